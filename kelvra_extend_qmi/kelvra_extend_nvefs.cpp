#include "kelvra_extend_nvefs.h"
