#include "studio/bookings.h"

namespace studio {
namespace {

constexpr Column<BookingInfo> kBookingColumns[] = {
    column::integer("RecID", &BookingInfo::RecID),
    column::date_to_the_minute("DateStart", &BookingInfo::DateStart),
    column::date_to_the_minute("DateEnd", &BookingInfo::DateEnd),
    column::integer("ClientID", &BookingInfo::ClientID),
    column::text("ClientName", &BookingInfo::ClientName),
    column::integer("ProjID", &BookingInfo::ProjID),
    column::integer("RoomID", &BookingInfo::RoomID),
    column::integer("EngineerID", &BookingInfo::EngineerID),
    column::text("EngineerName", &BookingInfo::EngineerName),
    column::integer("SessionID", &BookingInfo::SessionID),
    column::integer("StatusID", &BookingInfo::StatusID),
    column::text("Notes", &BookingInfo::Notes),
    column::integer("ExData", &BookingInfo::ExData),
};

// Values of ExData that select a date range.
constexpr LONG kAscendingSpan = 4;
constexpr LONG kDescendingSpan = 8;

// Deliberate: a date range tests only the start of a booking. Its bounds are midnights, so bookings that start later on
// the last day are outside.
constexpr Clause<BookingInfo> kBookingFilter[] = {
    filter::equals("ClientID", &BookingInfo::ClientID),
    filter::equals("EngineerID", &BookingInfo::EngineerID),
    filter::equals("ProjID", &BookingInfo::ProjID),
    filter::equals("RoomID", &BookingInfo::RoomID),
    filter::ordered_span("DateStart", &BookingInfo::DateStart, &BookingInfo::DateEnd, filter::Order::kAscending,
                         &BookingInfo::ExData, kAscendingSpan),
    filter::ordered_span("DateStart", &BookingInfo::DateStart, &BookingInfo::DateEnd, filter::Order::kDescending,
                         &BookingInfo::ExData, kDescendingSpan),
};

}  // namespace

constinit const TableMapping<BookingInfo> kBookings{
    .table = "Bookings",
    .key = {"RecID", &BookingInfo::RecID},
    .read = kBookingColumns,
    .write = std::span(kBookingColumns).subspan(1),
    .filter = kBookingFilter,
    .null_record = NullRecord::kFailsAtOnce,
};

}  // namespace studio
