! Zeros without a sign, where the program was compiled so.
! flags: -fno-sign-zero
real :: x = -0.0, y = -0.0004, h = 0.5
real(8) :: d = -0d0
print *, x, d, -h
print '(f6.2,e12.3,es12.3,en12.3,g12.3,d12.3)', x, x, x, x, x, x
print '(f6.2,e12.3,es12.3,en12.3,g12.3,d12.3)', y, y, y, y, y, y
print '(f6.2,f6.0,f5.0,f0.2,f0.0,sp,f6.2)', y, x, -0.3, y, -0.3, y
print '(g0,1x,g0.3,1x,1p,e10.3,z8.8)', x, x, x, x
print *, cmplx(x, y), sign(1.0, x)
end
