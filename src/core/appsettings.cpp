#include "appsettings.h"

AppSettings Cfg;
