// From texts to contacts: what files below version 210000 said with names, the newest schema says with
// contacts, services, participants and keys. All tables and fields of that schema are there when these run.
//
// One operation for each table, run in this order: 0, or -1 at its first error of the engine; what was done
// before stays.
#pragma once

class CDaoDatabase;

namespace db {

int convert_bookings(CDaoDatabase& database);
// The last name joins the name; a name that would grow too long, or that the narrow code page cannot hold, stays
// as it is. The fax becomes the fifth phone.
int convert_contacts(CDaoDatabase& database);
// Created today, one day for all.
int convert_projects(CDaoDatabase& database);
// Each name of the engineers' list becomes a contact with a service at the engineer's price.
int convert_engineers(CDaoDatabase& database);
// Sessions find their song by its name in their project (the name is a pattern, deliberately) and their
// engineer, who becomes a participant.
int convert_sessions(CDaoDatabase& database);
int convert_songs(CDaoDatabase& database);
int convert_stock(CDaoDatabase& database);
int convert_tracks(CDaoDatabase& database);
// The mix file of a song becomes a row of its own.
int convert_mix_files(CDaoDatabase& database);

}  // namespace db
