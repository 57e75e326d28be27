#include "compare.h"
