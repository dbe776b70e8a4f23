#pragma once
#include "company/company.h"
