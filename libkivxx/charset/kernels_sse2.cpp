#include "charset/kernels.h"
