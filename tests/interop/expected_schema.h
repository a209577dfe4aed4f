// The tables of a new studio file and of a new invoice file as an application expects them, written independently of
// the list that creates them.
#pragma once

namespace interop {

// Columns in order, each with name and kind. Kinds: key (auto-number), long, date, currency, single, text (255
// characters, may be empty), short (255 characters, must not be empty), memo (may be empty).
struct ExpectedTable {
    const char* name;
    const char* columns;
};

inline constexpr ExpectedTable kStudioTables[] = {
    {"Projects",
     "ProjID key, Name text, ProjCreateDate date, Type text, ProjTypeID long, Producer text, "
     "ProducerID long, Client text, ClientID long, Director text, DirectorID long, Folder text, "
     "DiscountType long, DiscountVal currency, ExData long, Notes memo"},
    {"Songs",
     "SongID key, ProjID long, Name text, Artist text, ArtistID long, Copyrights text, CopyrightsID long, "
     "Notes memo, MixFile memo, Folder memo, SongFile memo, Sequencer memo, Producer memo, ProducerID long, "
     "Client memo, ClientID long, ComposerID long, WriterID long, ExData long"},
    {"Tracks",
     "TrackID key, SongID long, Number long, Name text, Type text, TypeID long, Date text, TDate date, "
     "Performer text, PerformerID long, Destination text, DestinationID long, EngineerID long, "
     "ProducerID long, Status long, Mode long, Notes memo, ExData long"},
    {"Sessions",
     "SessionID key, ProjID long, SongName text, SongID long, Engineer text, ArtistID long, RecDate date, "
     "StartTime text, EndTime text, Total text, Notes memo, Client memo, ClientID long, RoomID long, "
     "ExData long"},
    {"Clients",
     "ClientID key, CategoryID long, CatIDs text, Name text, LastName text, Company text, Title text, "
     "Address text, Country text, State text, City text, ZipCode text, Email text, WebSite text, Fax text, "
     "Phone1 text, Phone1Descript text, Phone2 text, Phone2Descript text, Phone3 text, Phone3Descript text, "
     "Phone4 text, Phone4Descript text, Phone5 text, Phone5Descript text, Notes memo"},
    {"Stock",
     "StockID key, Name text, Type text, TypeID long, Quantity long, Supplier text, Date date, "
     "SupplierID long, Cost single, Notes memo, InStock long, ExData long"},
    {"Supply",
     "ActionID key, ProjID long, StockID long, StockName text, StockType text, Client text, ClientID long, "
     "Date date, Quantity long, ExData long"},
    {"Equipment", "RecID key, Name short, Action text, ActDate date, Cost text, Notes memo, ExData long"},
    {"Def_TrackDestination", "Name short"},
    {"Def_TrackTypes", "Name short"},
    {"Def_ProjTypes", "Name short"},
    {"Def_StockTypes", "TypeID key, TypeName short, InStock long, ItemPrice currency, ExData long"},
    {"DBHeader", "DBversion long, Color1 long, Color2 long"},
    {"Def_EquipActs", "Name short"},
    {"Def_Sequencer", "RecID key, Name short, Path text"},
    {"LibGroups", "GroupID key, Name short"},
    {"MediaLibs", "LibID key, GroupID long, Name short, Descript text"},
    {"MediaFiles", "RecID key, LibID long, Descript text, Path memo"},
    {"Bookings",
     "RecID key, DateStart date, DateEnd date, ClientID long, ClientName text, ProjID long, RoomID long, "
     "EngineerID long, EngineerName text, SessionID long, StatusID long, Notes memo, ExData long"},
    {"Def_Invoice",
     "StudioName text, StudioDetails memo, BaseCounter long, LastUsedCounter long, VAT1 long, VAT2 long, "
     "Tax currency, ExData long"},
    {"Def_Rooms", "RecID key, Name short, BasePrice currency, FullPrice currency, ExData long"},
    {"Def_Tax",
     "RecID key, TaxName text, TaxSymbol text, TaxVal currency, TaxType long, Color long, Hidden long, "
     "ExData long"},
    {"ContactCategories", "RecID key, Name short, Type long, ExData long"},
    {"ProjPayments", "RecID key, ProjID long, Details text, Date date, ClientID long, Pay currency, ExData long"},
    {"ProjActivities",
     "RecID key, ProjID long, Date date, Category text, CatID long, Item text, ItemID long, "
     "Quantity currency, QuantType long, Fee currency, ExData long"},
    {"MixFiles", "RecID key, SongID long, Descript text, Path memo, ExData long"},
    {"Messages", "RecID key, ContactID long, ConnectType text, Date date, Descript text, Details memo, ExData long"},
    {"Services",
     "RecID key, Name text, ContactID long, CategoryID long, TimeUnit long, RoomID long, Price currency, "
     "ExData long"},
    {"Participants",
     "RecID key, SessionID long, ContactID long, CategoryID long, ServiceID long, Duration currency, "
     "Communicate text, Notes memo, ExData long"},
    {"Gear",
     "RecID key, Manufacturer text, Model text, SerialNo text, StatusID long, RoomID long, CategoryID long, "
     "WarrantyDate date, PurchaseDate date, Cost single, ExData long"},
    {"GearServices",
     "RecID key, Name text, GearID long, RoomID long, TimeUnitID long, ServiceTypeID long, Price single, "
     "ExData long"},
    {"GearRepairs",
     "RecID key, GearID long, GearName text, ClaimNo text, SendDate date, ReturnDate date, "
     "WarrantyDate date, Technician text, TechID long, Cost single, Description memo, ExData long"},
    {"GearCategories", "RecID key, Name text, ExData long"},
    {"GearRentals",
     "RecID key, GearID long, ServiceID long, ProjID long, ServiceName text, Date date, Quantity single, "
     "QuantType long, ClientID long, RoomID long, ExData long"},
};

inline constexpr ExpectedTable kInvoiceTables[] = {
    {"DBHeader", "DBversion long, CreateDate date"},
    {"Invoices",
     "RecID key, InvoiceID long, ClientName text, ClientInfo text, InvTaxIDs text, Date date, "
     "SubTotal currency, Tax long, fTax currency, Tax_SubTotal currency, Discount long, fDiscount currency, "
     "Discount_SubTotal currency, Total currency, Paymetns single, Balance single, Notes memo, ExData long"},
    {"InvoiceParams",
     "RecID key, InvoiceID long, Type long, Name text, TaxIDs text, DWQuantity long, FQuantity currency, "
     "ItemPrice currency, Total currency, ExData long, Date date, Details text"},
};

}  // namespace interop
