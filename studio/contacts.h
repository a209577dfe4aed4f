// Contacts (`Clients`) with their categories (`ContactCategories`), the messages exchanged with them
// (`Messages`) and the services they render (`Services`).
//
// Contacts, categories and services are found by their filter: a key other than 0 replaces it, and a record
// with nothing set finds nothing but enumerates everything. That is deliberate.
#pragma once

#include <kvdb/records.h>

#include "studio/record_table.h"

namespace studio {

extern const TableMapping<ClientInfo> kClients;
extern const TableMapping<ConCatInfo> kContactCategories;
extern const TableMapping<MsgInfo> kMessages;
extern const TableMapping<ServiceInfo> kServices;

}  // namespace studio
