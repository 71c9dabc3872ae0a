! A converter: boxes that show one quantity in several units. A change in one is seen in all.
module temperatures
  implicit none
  real(8) :: celsius = 20d0, fahrenheit = 68d0, kelvin = 293.15d0
contains
  integer function from_celsius()
    fahrenheit = celsius * 1.8d0 + 32d0
    kelvin = celsius + 273.15d0
    from_celsius = 1
  end function
  integer function from_fahrenheit()
    celsius = (fahrenheit - 32d0) / 1.8d0
    kelvin = celsius + 273.15d0
    from_fahrenheit = 1
  end function
  integer function from_kelvin()
    celsius = kelvin - 273.15d0
    fahrenheit = celsius * 1.8d0 + 32d0
    from_kelvin = 1
  end function
  integer function freezing()
    celsius = 0d0
    freezing = from_celsius()
  end function
  integer function boiling()
    celsius = 100d0
    boiling = from_celsius()
  end function
end module

program converter
  use tarn
  use temperatures
  implicit none
  integer :: i
  i = winio@('%ca[Temperatures]%mn[&File[E&xit],&Set[&Freezing^Ctrl+F,&Boiling^Ctrl+B]]&', &
             'EXIT', freezing, boiling)
  i = winio@('%1tl&', 16)
  i = winio@('%fl&', -273.15d0, 1d6)
  i = winio@('Celsius%ta%df%^14rf%nl&', 1d0, celsius, from_celsius)
  i = winio@('%fl&', -459.67d0, 2d6)
  i = winio@('Fahrenheit%ta%df%^14rf%nl&', 1d0, fahrenheit, from_fahrenheit)
  i = winio@('%fl&', 0d0, 1d6)
  i = winio@('Kelvin%ta%df%^14rf%ff&', 1d0, kelvin, from_kelvin)
  i = winio@('%nl%cn%^9bt[&Freezing] %^9bt[&Boiling] %`9bt[&Close]', freezing, boiling)
end program
