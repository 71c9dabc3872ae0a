! Expressions are read, evaluated and derived: submodules, recursion, texts of any length.
module expressions
  implicit none
  integer, parameter :: dp = kind(1d0)
  type :: expression
    character(1) :: operator = ' '
    real(dp) :: value = 0
    character(:), allocatable :: name
    type(expression), pointer :: left => null(), right => null()
  end type
  type :: binding
    character(8) :: name
    real(dp) :: value
  end type
  interface
    module recursive function parse(text, at) result(e)
      character(*), intent(in) :: text
      integer, intent(inout) :: at
      type(expression) :: e
    end function
    module recursive pure function evaluate(e, variables) result(v)
      type(expression), intent(in) :: e
      type(binding), intent(in) :: variables(:)
      real(dp) :: v
    end function
    module recursive subroutine derive(e, name, d)
      type(expression), intent(in) :: e
      character(*), intent(in) :: name
      type(expression), intent(out) :: d
    end subroutine
    module recursive function show(e) result(text)
      type(expression), intent(in) :: e
      character(:), allocatable :: text
    end function
  end interface
end module
submodule (expressions) reading
  implicit none
contains
  module procedure parse
    e = chain(text, at, 1)
  end procedure
  ! Operands with operators of a rank between them: sums of products of atoms.
  recursive function chain(text, at, rank) result(e)
    character(*), intent(in) :: text
    integer, intent(inout) :: at
    integer, intent(in) :: rank
    character(*), parameter :: operators(2) = ['+-', '*/']
    type(expression) :: e, first
    character(1) :: op
    if (rank > size(operators)) then
      e = atom(text, at)
      return
    end if
    e = chain(text, at, rank + 1)
    do while (at <= len(text))
      op = text(at:at)
      if (index(operators(rank), op) == 0) exit
      at = at + 1
      first = e
      e = join(op, first, chain(text, at, rank + 1))
    end do
  end function
  recursive function atom(text, at) result(e)
    character(*), intent(in) :: text
    integer, intent(inout) :: at
    type(expression) :: e
    integer :: length, status
    if (text(at:at) == '(') then
      at = at + 1
      e = chain(text, at, 1)
      at = at + 1
    else if (verify(text(at:at), '0123456789.') == 0) then
      length = verify(text(at:) // '#', '0123456789.') - 1
      read (text(at:at+length-1), *, iostat=status) e%value
      if (status /= 0) error stop 'number'
      e%operator = 'n'
      at = at + length
    else
      length = scan(text(at:) // ')', '+-*/()') - 1
      e%operator = 'v'
      e%name = text(at:at+length-1)
      at = at + length
    end if
  end function
  function join(op, a, b) result(e)
    character(1), intent(in) :: op
    type(expression), intent(in) :: a, b
    type(expression) :: e
    e%operator = op
    allocate (e%left, source=a)
    allocate (e%right, source=b)
  end function
end submodule
submodule (expressions) working
  implicit none
contains
  module procedure evaluate
    integer :: i
    select case (e%operator)
    case ('n'); v = e%value
    case ('v')
      v = 0
      do i = 1, size(variables)
        if (variables(i)%name == e%name) v = variables(i)%value
      end do
    case ('+'); v = evaluate(e%left, variables) + evaluate(e%right, variables)
    case ('-'); v = evaluate(e%left, variables) - evaluate(e%right, variables)
    case ('*'); v = evaluate(e%left, variables) * evaluate(e%right, variables)
    case default; v = evaluate(e%left, variables) / evaluate(e%right, variables)
    end select
  end procedure
  module procedure derive
    type(expression) :: l, r
    select case (e%operator)
    case ('n', 'v')
      d%operator = 'n'
      if (e%operator == 'v') then
        if (e%name == name) d%value = 1
      end if
    case ('+', '-')
      d%operator = e%operator
      allocate (d%left, d%right)
      call derive(e%left, name, d%left)
      call derive(e%right, name, d%right)
    case ('*')
      d%operator = '+'
      call derive(e%left, name, l)
      call derive(e%right, name, r)
      allocate (d%left)
      d%left%operator = '*'
      allocate (d%right)
      d%right%operator = '*'
      allocate (d%left%left, source=l)
      allocate (d%left%right, source=e%right)
      allocate (d%right%left, source=e%left)
      allocate (d%right%right, source=r)
    case default
      d%operator = '/'
      call derive(e%left, name, l)
      allocate (d%left, source=l)
      allocate (d%right, source=e%right)
    end select
  end procedure
  module procedure show
    character(24) :: number
    character(:), allocatable :: l, r
    select case (e%operator)
    case ('n')
      write (number, '(f0.2)') e%value
      text = trim(number)
    case ('v')
      text = e%name
    case default
      l = show(e%left)
      r = show(e%right)
      text = '(' // l // e%operator // r // ')'
    end select
  end procedure
end submodule
program calculator
  use expressions
  implicit none
  character(*), parameter :: inputs(5) = [character(32) :: '1+2*3', '(1+2)*3-4/8', 'x*x+2*x*y', &
    '(a-b)*(a+b)/2', '((((7))))*.5']
  type(binding) :: variables(4) = [binding('x', 3d0), binding('y', -1d0), binding('a', 5d0), binding('b', 4d0)]
  type(expression) :: e, d
  integer :: i, at
  do i = 1, size(inputs)
    at = 1
    e = parse(trim(inputs(i)), at)
    call derive(e, 'x', d)
    print '(a,t34,"= ",f9.3)', show(e), evaluate(e, variables)
    print '(4x,a,f9.3)', show(d), evaluate(d, variables)
  end do
end program
