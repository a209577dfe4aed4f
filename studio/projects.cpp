#include "studio/projects.h"

namespace studio {
namespace {

constexpr Column<ProjInfo> kRead[] = {
    column::integer("ProjID", &ProjInfo::ProjID),
    column::text("Name", &ProjInfo::Name),
    column::date("ProjCreateDate", &ProjInfo::ProjCreateDate),
    column::text("Type", &ProjInfo::Type),
    column::integer("ProjTypeID", &ProjInfo::ProjTypeID),
    column::text("Producer", &ProjInfo::Producer),
    column::integer("ProducerID", &ProjInfo::ProducerID),
    column::text("Client", &ProjInfo::Client),
    column::integer("ClientID", &ProjInfo::ClientID),
    column::text("Director", &ProjInfo::Director),
    column::integer("DirectorID", &ProjInfo::DirectorID),
    column::text("Folder", &ProjInfo::Folder),
    column::integer("DiscountType", &ProjInfo::DiscountType),
    column::currency("DiscountVal", &ProjInfo::DiscountVal),
    column::text("Notes", &ProjInfo::Notes),
    column::integer("ExData", &ProjInfo::ExData),
};

constexpr Column<ProjInfo> kWrite[] = {
    column::text("Name", &ProjInfo::Name),
    column::date("ProjCreateDate", &ProjInfo::ProjCreateDate),
    column::text("Type", &ProjInfo::Type),
    column::integer("ProjTypeID", &ProjInfo::ProjTypeID),
    column::text("Producer", &ProjInfo::Producer),
    column::integer("ProducerID", &ProjInfo::ProducerID),
    column::text("Director", &ProjInfo::Director),
    column::integer("DirectorID", &ProjInfo::DirectorID),
    column::text("Folder", &ProjInfo::Folder),
    column::text("Client", &ProjInfo::Client),
    column::integer("ClientID", &ProjInfo::ClientID),
    column::integer("DiscountType", &ProjInfo::DiscountType),
    column::currency("DiscountVal", &ProjInfo::DiscountVal),
    column::text("Notes", &ProjInfo::Notes),
    column::integer("ExData", &ProjInfo::ExData),
};

constexpr Clause<ProjInfo> kProjectFilter[] = {
    filter::equals("ClientID", &ProjInfo::ClientID),
    filter::equals("Director", &ProjInfo::Director),
    filter::equals("Producer", &ProjInfo::Producer),
    filter::equals("Type", &ProjInfo::Type),
};

}  // namespace

constinit const TableMapping<ProjInfo> kProjects{
    .table = "Projects",
    .key = {"ProjID", &ProjInfo::ProjID},
    .read = kRead,
    .write = kWrite,
    .filter = kProjectFilter,
};

}  // namespace studio
