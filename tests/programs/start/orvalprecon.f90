!> run:
!> env: ORVALPRECON=WF15'first.txt'WF16'second.txt'
!> file: second.txt
!> out: to the second
!> run:
!> env: ORVALPRECON=RX1'x'
!> status: 1
!> err: Error: Can't parse preconnection string
!> run:
!> env: ORVALPRECON=RF100'x'
!> status: 1
!> err: Error: Preconnection unit number not in range 1-99
write (16, '(a)') 'to the second'
end
