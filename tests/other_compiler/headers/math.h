// In place of the C++ library's: that needs functions on long doubles, which Wine's C runtime lacks. The hosts compute
// nothing.
#pragma once
