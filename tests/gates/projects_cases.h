// Projects as the gates serve them: records, methods and how every member is stored.
#pragma once

#include "tests/gates/record_case.h"

namespace testing_support {

inline const RecordCase<IDBgate1, ProjInfo> kProjects{
    .table = "Projects",
    .key_column = "ProjID",
    .key = &ProjInfo::ProjID,
    .first = &IDBgate1::EnumFirstProj,
    .next = &IDBgate1::EnumNextProj,
    .find = &IDBgate1::FindProj,
    .add = &IDBgate1::AddProj,
    .update = &IDBgate1::UpdateProj,
    .remove_key = &IDBgate1::DeleteProj,
    .members = {member::integer("ExData", &ProjInfo::ExData), member::text("Name", &ProjInfo::Name),
                member::text("Client", &ProjInfo::Client), member::integer("ClientID", &ProjInfo::ClientID),
                member::integer("ProducerID", &ProjInfo::ProducerID),
                member::integer("DirectorID", &ProjInfo::DirectorID), member::text("Producer", &ProjInfo::Producer),
                member::text("Director", &ProjInfo::Director), member::text("Folder", &ProjInfo::Folder),
                member::text("Type", &ProjInfo::Type), member::integer("ProjTypeID", &ProjInfo::ProjTypeID),
                member::date("ProjCreateDate", &ProjInfo::ProjCreateDate),
                member::currency("DiscountVal", &ProjInfo::DiscountVal),
                member::integer("DiscountType", &ProjInfo::DiscountType), member::memo("Notes", &ProjInfo::Notes)},
    .read_order = {"Name", "ProjCreateDate", "Type", "ProjTypeID", "Producer", "ProducerID", "Client", "ClientID",
                   "Director", "DirectorID", "Folder", "DiscountType", "DiscountVal", "Notes", "ExData"},
    .write_order = {"Name", "ProjCreateDate", "Type", "ProjTypeID", "Producer", "ProducerID", "Director", "DirectorID",
                    "Folder", "Client", "ClientID", "DiscountType", "DiscountVal", "Notes", "ExData"},
};

}  // namespace testing_support
