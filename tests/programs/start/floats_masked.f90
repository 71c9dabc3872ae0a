!> run:
!> run:
!> start: none
!> run:
!> env: TARNENVAR=mask_all
real, volatile :: x, y
x = 0
y = x / x
y = 1 / x
x = 1e30
y = x * x
end
