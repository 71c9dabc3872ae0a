//> start: native_c
//> run:
//> args: x
//> status: 136
//> err~: .*
//> run:
//> args: x
//> env: TARNENVAR=mask_invalid_op
/* Only an image that asks for the library's own masks traps. */
int main(int argc, char** argv) {
    volatile double zero = argc - 2;
    volatile double nan = zero / zero;
    return nan == nan;
}
