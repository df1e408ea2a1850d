#include "KCMainProgDataExChange.h"

KCMainProgDataExChange *g_pMainProgDataExChange = nullptr;
