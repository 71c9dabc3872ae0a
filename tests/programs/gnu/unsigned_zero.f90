! -fno-sign-zero: a zero has no sign, not even one that digits were cut from.
! flags: -fno-sign-zero -w
character(20) :: s
real :: z = -0.0, t = -0.0001
write (*,'(f6.1,f6.1,e10.2,es10.2,g10.2,g0,1x,f0.1,1x,f0.1)') z, t, z, z, z, z, z, t
print *, z, cmplx(z,t)
write (*,'(sp,f6.1,en10.2,d10.2,f5.3)') z,z,z,t
write (*,'(i4,i4.0)') -0, 0
end
