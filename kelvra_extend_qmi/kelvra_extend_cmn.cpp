#include "kelvra_extend_cmn.h"
