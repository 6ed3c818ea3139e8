// Not compiled: the layer check must refuse this include of a higher layer.
#include "compiler/compiler.h"
