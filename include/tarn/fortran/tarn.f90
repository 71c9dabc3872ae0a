! The library's own routines for Fortran programs that are compiled by tarnfc: `use tarn` brings all
! of them, and each family has a module of its own. A name that ends in `@` may be written so in a
! program.
module tarn
  use tarn_characters
  use tarn_dates
  use tarn_exceptions
  use tarn_files
  use tarn_float
  use tarn_handles
  use tarn_random
  use tarn_storage
  use tarn_virtual
  use tarn_threads
  use tarn_windows
  implicit none
  public
end module tarn
