// Who made which version of what: the one place that states it. Plain macros, since the resource compiler and
// the scripts of packaging/ read them too.
#pragma once

#define PRODUCT_NAME "Velqar"
#define PRODUCT_COMPANY "Quorvane"
#define PRODUCT_COPYRIGHT "Copyright (C) Quorvane"
#define PRODUCT_DESCRIPTION "Messaging component: SMS, pager messages and MMS"
#define PRODUCT_MODULE "NeltCtrlx64.dll"

#define PRODUCT_MAJOR 5
#define PRODUCT_MINOR 3
#define PRODUCT_RELEASE 10
#define PRODUCT_BUILD 1123
