!> run:
!> stdout: /dev/full
!> status: 1
!> err: *** Error  117, Disk full
!> err:     on unit 6
!> run:
!> stdout: closed
!> status: 141
!> run:
!> out: the only line
! What leaves the buffer only at the end may still fail, and the status tells.
print '(a)', 'the only line'
end
