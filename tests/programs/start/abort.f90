!> status: 134
!> err: Program aborted.
call abort()
end
