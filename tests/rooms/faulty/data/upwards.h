#include "app/company/company.h"
#include "data/value.h"
