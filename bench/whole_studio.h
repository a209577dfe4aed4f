// The third table: a whole studio, made anew, and after ten years of work.
#pragma once

#include <cstdint>
#include <string>

#include "bench/ratios.h"

namespace bench {

// The modes of the measuring processes.
inline constexpr const char* kMeasureCreating = "--measure-creating";
inline constexpr const char* kMeasureTenYears = "--measure-ten-years";

// In the order of the table.
inline constexpr const char* kStudioOperations[] = {
    "creating", "creating and closing", "ten years: opening", "ten years: a day's work", "ten years: closing",
};
// Where figures are kept by the number of projects, those of whole studios are under this number.
inline constexpr std::int32_t kWholeStudio = 0;

// The measuring processes, of kind "kvdb" or "sqlite".
int measure_creating(const std::string& kind, const std::string& folder);
int measure_ten_years(const std::string& kind, const std::string& folder);

// One pass in processes of their own.
void measure_whole_studios(const char* program, const std::string& folder, PassFigures& figures);
void print_whole_studios(const PassFigures& figures);

}  // namespace bench
