#include "data/value.h"
#include "app/company/company.h"
