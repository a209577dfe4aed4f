// From texts to contacts: what files below version 210000 said with names, the newest schema says with
// contacts, services, participants and keys. All tables and fields of that schema are there when these run.
//
// One operation for each table, run in this order. Throws CDaoException* at its first error; what was done before
// stays.
#pragma once

class CDaoDatabase;

namespace db {

void convert_bookings(CDaoDatabase& database);
// The last name joins the name; a name that would grow too long, or that the narrow code page cannot hold, stays
// as it is. The fax becomes the fifth phone.
void convert_contacts(CDaoDatabase& database);
// Created today, one day for all.
void convert_projects(CDaoDatabase& database);
// Each name of the engineers' list becomes a contact with a service at the engineer's price.
void convert_engineers(CDaoDatabase& database);
// Sessions find their song by its name in their project (the name is a pattern, deliberately) and their
// engineer, who becomes a participant.
void convert_sessions(CDaoDatabase& database);
void convert_songs(CDaoDatabase& database);
void convert_stock(CDaoDatabase& database);
void convert_tracks(CDaoDatabase& database);
// The mix file of a song becomes a row of its own.
void convert_mix_files(CDaoDatabase& database);

}  // namespace db
