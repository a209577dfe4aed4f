// Converts names to contacts: files below version 210000 store names where the newest schema has
// contacts, services, participants and keys. All tables and fields of that schema exist when these run.
//
// One operation per table, run in this order. Each throws CDaoException* at its first error; changes made before it
// stay.
#pragma once

class CDaoDatabase;

namespace db {

void convert_bookings(CDaoDatabase& database);
// Joins the last name to the name; a name that would become too long, or that the narrow code page cannot hold, stays
// as it is. Moves the fax to the fifth phone.
void convert_contacts(CDaoDatabase& database);
// Sets the date of creation of all projects to today.
void convert_projects(CDaoDatabase& database);
// Makes each name of the engineers' list a contact with a service at the engineer's price.
void convert_engineers(CDaoDatabase& database);
// Links sessions to their song, found by its name in their project (the name is a pattern, deliberately), and to their
// engineer, who becomes a participant.
void convert_sessions(CDaoDatabase& database);
void convert_songs(CDaoDatabase& database);
void convert_stock(CDaoDatabase& database);
void convert_tracks(CDaoDatabase& database);
// Moves the mix file of each song to a row of its own.
void convert_mix_files(CDaoDatabase& database);

}  // namespace db
