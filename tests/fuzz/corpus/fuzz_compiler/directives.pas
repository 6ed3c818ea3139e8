unit U;
#define X
#ifdef X
var a;
#else
var b;
#endif
#ifndef X
const c = 1;
#endif
#undef X
#else
#endif
#foo 1 2 3;
