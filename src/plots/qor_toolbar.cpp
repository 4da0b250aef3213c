#include "plots/qor_toolbar.h"
