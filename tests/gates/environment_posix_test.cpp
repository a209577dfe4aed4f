// Gates in processes of other places: time zones, date separators and code pages. Each test gives the environment to a
// fresh copy of the component, which asks for it once.
#include <langinfo.h>
#include <locale.h>
#include <stdlib.h>
#include <time.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "tests/frame/late_binding.h"
#include "tests/gates/record_round_trip.h"

using namespace testing_support;

namespace {

// Variables of the environment, as they were when the object goes.
class Environment {
public:
    ~Environment() {
        for (const auto& [name, value] : before_) {
            if (value) {
                ::setenv(name.c_str(), value->c_str(), 1);
            } else {
                ::unsetenv(name.c_str());
            }
        }
        ::tzset();
    }
    void set(const std::string& name, const std::string& value) {
        const char* const now = ::getenv(name.c_str());
        before_.try_emplace(name, now != nullptr ? std::optional<std::string>(now) : std::nullopt);
        ::setenv(name.c_str(), value.c_str(), 1);
        ::tzset();
    }

private:
    std::map<std::string, std::optional<std::string>> before_;
};

// On both sides of the date line, with summer times of both halves of the earth, and one of half an hour.
constexpr const char* kZones[] = {"UTC0",
                                  "EST5EDT,M3.2.0,M11.1.0",
                                  "CET-1CEST,M3.5.0,M10.5.0/3",
                                  "NZST-12NZDT,M9.5.0,M4.1.0/3",
                                  "LHST-10:30LHDT-11,M10.1.0,M4.1.0",
                                  "IST-5:30",
                                  "<+14>-14",
                                  "<-12>12"};

struct Day {
    int year, month, day;
};
// The days on which summer times begin and end among them.
constexpr Day kDays[] = {{2005, 1, 1},  {2005, 3, 13},  {2005, 3, 27}, {2005, 4, 3},  {2005, 9, 25},
                         {2005, 10, 2}, {2005, 10, 30}, {2005, 11, 6}, {2005, 12, 31}};

CTime at(const Day& day, int hour, int minute) { return CTime(day.year, day.month, day.day, hour, minute, 0); }

bool is_day(const CTime& time, const Day& day) {
    return time.GetYear() == day.year && time.GetMonth() == day.month && time.GetDay() == day.day;
}

TEST(ZonesGate, dates_come_back_as_the_local_day_in_every_zone) {
    Environment environment;
    for (const char* const zone : kZones) {
        SCOPED_TRACE(zone);
        environment.set("TZ", zone);
        OpenGate<IDBgate1> gate;
        for (const Day& day : kDays) {
            for (const CTime& given : {at(day, 4, 0), at(day, 12, 0), at(day, 23, 59)}) {
                ProjInfo project;
                project.ProjCreateDate = given;
                ASSERT_EQ(call(*gate, &IDBgate1::AddProj, project), S_OK);
                ASSERT_EQ(call(*gate, &IDBgate1::FindProj, project), S_OK);
                EXPECT_TRUE(is_day(project.ProjCreateDate, day)) << day.month << "/" << day.day;
                EXPECT_EQ(project.ProjCreateDate.GetHour() * 60 + project.ProjCreateDate.GetMinute(), 0);
            }
        }
    }
}

// Sessions on the day before, the day itself and the day after, asked for by the last minute of that day.
void expect_date_conditions(IDBgate1& gate) {
    const Day days[] = {{2005, 2, 28}, {2005, 3, 1}, {2005, 3, 2}, {2005, 1, 3}};
    for (const Day& day : days) {
        SessionInfo session;
        session.RecDate = at(day, 13, 0);
        ASSERT_EQ(call(gate, &IDBgate1::AddSession, session), S_OK);
        InvoiceInfo invoice;
        invoice.Date = session.RecDate;
        ASSERT_EQ(call(gate, &IDBgate1::AddInvoice, invoice), S_OK);
        BookingInfo booking;
        booking.DateStart = at(day, 0, 0);
        ASSERT_EQ(call(gate, &IDBgate1::AddBooking, booking), S_OK);
    }
    for (const Day& day : days) {
        SCOPED_TRACE(std::to_string(day.month) + "/" + std::to_string(day.day));
        SessionExInfo session;
        session.FromDate = at(day, 23, 59);
        session.ToDate = at(day, 4, 0);
        session.DateFlags = 3;
        ASSERT_EQ(call(gate, &IDBgate1::EnumEx_FirstSession, session), S_OK);
        EXPECT_TRUE(is_day(session.RecDate, day));
        EXPECT_EQ(call(gate, &IDBgate1::EnumEx_NextSession, session), E_FAIL);
        InvoiceInfo invoice;
        invoice.FromDate = at(day, 23, 59);
        invoice.ToDate = at(day, 4, 0);
        ASSERT_EQ(call(gate, &IDBgate1::EnumFirstInvoice, invoice), S_OK);
        EXPECT_TRUE(is_day(invoice.Date, day));
        EXPECT_EQ(call(gate, &IDBgate1::EnumNextInvoice, invoice), E_FAIL);
        BookingInfo booking;
        booking.ExData = 4;
        booking.DateStart = at(day, 23, 59);
        booking.DateEnd = at(day, 4, 0);
        ASSERT_EQ(call(gate, &IDBgate1::EnumFirstBooking, booking), S_OK);
        EXPECT_TRUE(is_day(booking.DateStart, day));
        EXPECT_EQ(call(gate, &IDBgate1::EnumNextBooking, booking), E_FAIL);
    }
}

TEST(ZonesGate, conditions_of_dates_take_the_local_day_in_every_zone) {
    Environment environment;
    for (const char* const zone : kZones) {
        SCOPED_TRACE(zone);
        environment.set("TZ", zone);
        const OpenGate<IDBgate1> gate;
        expect_date_conditions(*gate);
    }
}

// ---- Locales compiled for the test alone

TEST(LocaleGate, conditions_of_dates_hold_with_the_separators_of_real_locales) {
    const TempFolder folder;
    Environment environment;
    environment.set("LOCPATH", folder.path());
    const std::pair<const char*, const char*> locales[] = {{"de_DE", "."}, {"sv_SE", "-"}, {"en_US", "/"}};
    for (const auto& [source, separator] : locales) {
        SCOPED_TRACE(source);
        const std::string name = std::string(source) + ".UTF-8";
        const std::string command = std::string("localedef -c --no-archive -i ") + source + " -f UTF-8 '" +
                                    folder.file(name) + "' >'" + folder.file("log") + "' 2>&1";
        if (std::system(command.c_str()) != 0) GTEST_SKIP() << "no sources of locales";
        environment.set("LC_ALL", name);
        const locale_t locale = ::newlocale(LC_TIME_MASK, "", nullptr);
        ASSERT_NE(locale, nullptr);
        EXPECT_NE(std::string(::nl_langinfo_l(D_FMT, locale)).find(separator), std::string::npos);
        ::freelocale(locale);
        const OpenGate<IDBgate1> gate;
        expect_date_conditions(*gate);
    }
}

// ---- Code pages

struct ListNames {
    HRESULT (STDMETHODCALLTYPE IDBgate1::*first)(LPSTR);
    HRESULT (STDMETHODCALLTYPE IDBgate1::*add)(LPSTR);
    const char16_t* word;
};
constexpr ListNames kListsByName[] = {
    {&IDBgate1::EnumFirstTrackType, &IDBgate1::AddTrackType, u"TrackType"},
    {&IDBgate1::EnumFirstProjType, &IDBgate1::AddProjType, u"ProjType"},
    {&IDBgate1::EnumFirstTrackDestin, &IDBgate1::AddTrackDestin, u"TrackDestin"},
    {&IDBgate1::EnumFirstEquipAct, &IDBgate1::AddEquipAct, u"EquipAct"},
};

class Utf8Gate : public ::testing::Test {
protected:
    Utf8Gate() { environment_.set("LC_ALL", "C.UTF-8"); }

    Environment environment_;
};

// 255 characters of two bytes: a host's buffer gets what fits of them, a call by name all.
TEST_F(Utf8Gate, longest_name_of_a_list_is_cut_for_a_buffer_and_whole_by_invoke) {
    const OpenGate<IDBgate1> gate;
    std::string narrow = "x";
    std::u16string wide = u"x";
    for (int i = 0; i < 254; ++i) {
        narrow += "\xC3\xA4";
        wide += u'\u00e4';
    }
    for (const ListNames& list : kListsByName) {
        const std::string word(list.word, list.word + std::char_traits<char16_t>::length(list.word));
        SCOPED_TRACE(word);
        std::string name = narrow;
        ASSERT_EQ(((*gate).*list.add)(name.data()), S_OK);
        char buffer[256 + 8];
        std::fill(std::begin(buffer), std::end(buffer), '\x5A');
        ASSERT_EQ(((*gate).*list.first)(buffer), S_OK);
        EXPECT_EQ(std::string(buffer), narrow.substr(0, 255));
        EXPECT_EQ(std::string(buffer + 256, 8), std::string(8, '\x5A'));

        Variant text;
        ASSERT_EQ(invoke(*gate, std::u16string(u"EnumFirst") + list.word, {Variant::ref(text)}).result, S_OK);
        ASSERT_EQ(text.vt, VT_BSTR);
        EXPECT_TRUE(text_of(text.bstrVal) == wide);
        EXPECT_EQ(invoke(*gate, std::u16string(u"Delete") + list.word, {text}).result, S_OK);
        EXPECT_EQ(((*gate).*list.first)(buffer), E_FAIL);  // it is gone
    }
}

// A byte that is no character in this code page is none in a pattern either.
TEST_F(Utf8Gate, unknown_byte_in_a_filter_matches_no_other_character) {
    const OpenGate<IDBgate1> gate;
    for (const char* const name : {"a", "?", "ab", "\xE4", "a\xE4"}) {
        SongInfo song;
        song.Name = name;
        ASSERT_EQ(call(*gate, &IDBgate1::AddSong, song), S_OK);
    }
    const auto keys = [&](const char* pattern) {
        std::string found;
        SongInfo song;
        song.Name = pattern;
        HRESULT result = call(*gate, &IDBgate1::EnumFirstSong, song);
        for (; result == S_OK; result = call(*gate, &IDBgate1::EnumNextSong, song)) {
            found += std::to_string(song.SongID) + " ";
        }
        return found;
    };
    EXPECT_EQ(keys("?"), "1 2 4 ");
    EXPECT_EQ(keys("\xE4"), "4 ");
    EXPECT_EQ(keys("a\xE4"), "5 ");
    EXPECT_EQ(keys("\xEF\xBF\xBD"), "4 ");  // as it comes back
    SongInfo song;
    song.SongID = 5;
    ASSERT_EQ(call(*gate, &IDBgate1::FindSong, song), S_OK);
    EXPECT_EQ(song.Name, "a\xEF\xBF\xBD");
}

// ---- The studio's folder

// The folder is that of the path by which the library was loaded, be the file itself elsewhere. To the loader a second
// link leads to the library that it has loaded already.
TEST(FolderGate, studio_lies_beside_the_link_that_the_library_was_loaded_by) {
    namespace fs = std::filesystem;
    const TempFolder real;
    const TempFolder first;
    const TempFolder second;
    const std::string name = fs::path(KVDB_LIBRARY).filename().string();
    fs::copy_file(KVDB_LIBRARY, real.file(name));
    for (const TempFolder* const folder : {&first, &second}) fs::create_symlink(real.file(name), folder->file(name));
    {
        const Component component(first.path());
        const Component same(second.path());
        const auto gate = component.create<IDBgate1>();
        const auto other = same.create<IDBgate1>();
        ASSERT_EQ(gate->OpenDB(), S_OK);
        ProjInfo project;
        EXPECT_EQ(gate->AddProj(address_of(project)), S_OK);
        EXPECT_EQ(other->CreateDB(nullptr), S_OK);
        EXPECT_EQ(other->FindProj(address_of(project)), S_OK);
        EXPECT_EQ(gate->CloseDB(), S_OK);
        EXPECT_EQ(other->FindProj(address_of(project)), E_FAIL);
    }
    for (const char* const file : {"sldb.mdb", "kvinvdb.mdb"}) {
        EXPECT_TRUE(fs::exists(first.file(file)));
        EXPECT_FALSE(fs::exists(second.file(file)));
        EXPECT_FALSE(fs::exists(real.file(file)));
    }
}

}  // namespace
