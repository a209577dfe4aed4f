// Everything that an application needs: the gates, the records, the value classes, the data-access exception and, on
// hosts other than Windows, the small COM set.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>
#include <kvdb/ctime.h>
#include <kvdb/dao_exception.h>
#include <kvdb/gates.h>
#include <kvdb/records.h>
