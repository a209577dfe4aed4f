#include "bench/record_store.h"

namespace bench {

CTime sample_day(std::int32_t day) {
    const std::int32_t month = day / 28;
    return CTime(2001 + month / 12, 1 + month % 12, 1 + day % 28, 0, 0, 0);
}

SongInfo sample_song(std::int32_t project, std::int32_t n) {
    SongInfo song;
    song.ProjID = project;
    song.Name.Format("Song number %07d", n);
    song.Artist = "An artist of some name";
    song.ArtistID = n % 100 + 1;
    song.Copyrights = "All of them";
    song.CopyrightsID = n % 50 + 1;
    song.Notes = "Notes of a few words, as they are written in passing.";
    song.Folder = "D:\\Studio\\Songs";
    song.Sequencer = "A sequencer";
    song.ClientID = n % 100 + 1;
    song.ProducerID = n % 13;
    song.ComposerID = n % 11;
    return song;
}

ClientInfo sample_client(std::int32_t n) {
    ClientInfo client;
    client.Name.Format("Client number %07d", n);
    client.LastName = "A last name";
    client.Company.Format("Company %d", n % 500);
    client.CategoryID = n % 50 + 1;
    client.CatIDs.Format(";%d;%d;", n % 50 + 1, n % 7 + 100);
    client.City = "A city";
    client.Email.Format("client%d@example.com", n);
    client.Phone1.Format("555-%07d", n);
    return client;
}

SessionInfo sample_session(std::int32_t n) {
    SessionInfo session;
    session.ProjID = n % 1000 + 1;
    session.SongName.Format("Song number %07d", n);
    session.SongID = n;
    session.Engineer = "An engineer";
    session.ArtistID = n % 100 + 1;
    session.RecDate = sample_day(n % kDays);
    session.StartTime = "10:00";
    session.EndTime = "14:30";
    session.Total = "4:30";
    session.Notes = "Notes of a few words.";
    session.ClientID = n % 1000 + 1;
    session.RoomID = n % 5 + 1;
    return session;
}

BookingInfo sample_booking(std::int32_t n) {
    BookingInfo booking;
    booking.DateStart = sample_day(n % kDays);
    booking.DateEnd = CTime(booking.DateStart.GetTime() + 4 * 3600);
    booking.ClientID = n % 1000 + 1;
    booking.ClientName.Format("Client number %04d", booking.ClientID);
    booking.ProjID = n % 1000 + 1;
    booking.RoomID = n % 5 + 1;
    booking.EngineerID = n % 20 + 1;
    booking.EngineerName = "An engineer";
    booking.StatusID = n % 3;
    booking.Notes = "Notes of a few words.";
    return booking;
}

StockInfo sample_stock(std::int32_t n) {
    StockInfo stock;
    stock.Name = "Tape of some make";
    stock.Type = "Tape";
    stock.TypeID = n % kStockTypes + 1;
    stock.Quantity = n % 20 + 2;
    stock.Supplier = "A supplier";
    stock.Date = sample_day(n % kDays);
    stock.Cost = 12.5f;
    return stock;
}

SupplyAct sample_supply(std::int32_t n) {
    SupplyAct supply;
    supply.StockID = n % kStockTypes + 1;
    supply.ProjID = n % 1000 + 1;
    supply.StockName = "Tape of some make";
    supply.StockType = "Tape";
    supply.ClientID = n % 1000 + 1;
    supply.Date = sample_day(n % kDays);
    supply.Quantity = n % 20 + 1;
    return supply;
}

StockTypeInfo sample_stock_type(std::int32_t n) {
    StockTypeInfo type;
    type.TypeName.Format("Type %d", n);
    type.ItemPrice = 7.25f;
    return type;
}

InvParamsInfo sample_line(std::int32_t n) {
    InvParamsInfo line;
    line.InvoiceID = n / kLinesOfInvoice + 1;
    line.Type = n % 3;
    line.Name = "Hours in a room";
    line.DWQuantity = n % 10;
    line.ItemPrice = 80;
    line.Total = 160;
    line.Date = sample_day(n % kDays);
    line.Details = "Details of a few words.";
    return line;
}

GearInfo sample_gear(std::int32_t n) {
    GearInfo gear;
    gear.Manufacturer = "A manufacturer";
    gear.Model.Format("Model %07d", n);
    gear.SerialNo.Format("SN-%09d", n);
    gear.StatusID = n % 3;
    gear.RoomID = n % 5 + 1;
    gear.CategoryID = n % kGearCategories + 1;
    gear.PurchaseDate = sample_day(n % kDays);
    gear.Cost = 1500;
    return gear;
}

}  // namespace bench
