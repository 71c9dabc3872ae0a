!> flags: -std=gnu
!> run:
!> stdin: go
!> stdin: go
!> stdin: go
!> status: 4
!> err: PAUSE 
!> err: To resume execution, type go.  Other input will terminate the job.
!> err: RESUMED
!> err: PAUSE 5
!> err: To resume execution, type go.  Other input will terminate the job.
!> err: RESUMED
!> err: PAUSE words
!> err: To resume execution, type go.  Other input will terminate the job.
!> err: RESUMED
!> err: STOP 4
!> run:
!> stdin: gox
!> err: PAUSE 
!> err: To resume execution, type go.  Other input will terminate the job.
!> run:
!> err: PAUSE 
!> err: To resume execution, type go.  Other input will terminate the job.
pause
pause 5
pause 'words'
stop 4
end
