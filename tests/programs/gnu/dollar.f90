! The `$` of a format: no record of the statement ends its line from there on, reverted ones included.
! flags: -std=gnu
program d
write (*, '(i3,$)') 2,3,4
write (*, '(i3,$,/,i4)') 2,3,4
write (*, '($,i3)') 2,3,4
write (*, '(i3,$,a,/,i4)') 2,'b',4
write (*, '(i3)') 9
write (*, '(a,$)') 'x'
write (*, '(/,a)') 'y'
write (*,'(2(i3,$))') 1,2,3,4,5
write (*,*) 'end'
write (*,'(2(i3,$,/))') 1,2,3,4,5
write (*,*) 'end'
end
