#include "data/error.h"
