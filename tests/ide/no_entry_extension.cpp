// A library without init_ext, for the loader test.
extern "C" __attribute__((visibility("default"))) int not_an_entry() {
    return 1;
}
