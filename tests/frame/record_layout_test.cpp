// Size and offsets of every record in a 32-bit host, member by member: every member takes four bytes, so none has a gap
// before it.
#include <gtest/gtest.h>
#include <kvdb/kvdb.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#if UINTPTR_MAX == 0xFFFFFFFF

static_assert(sizeof(CString) == 4);
static_assert(sizeof(CTime) == 4);
static_assert(sizeof(LONG_PTR) == 4);

static_assert(sizeof(HeadInfo) == 12);
static_assert(offsetof(HeadInfo, DBversion) == 0);
static_assert(offsetof(HeadInfo, Color1) == 4);
static_assert(offsetof(HeadInfo, Color2) == 8);

static_assert(sizeof(CompactDBInfo) == 4);
static_assert(offsetof(CompactDBInfo, Reserved) == 0);

static_assert(sizeof(ProjInfo) == 64);
static_assert(offsetof(ProjInfo, ProjID) == 0);
static_assert(offsetof(ProjInfo, ExData) == 4);
static_assert(offsetof(ProjInfo, Name) == 8);
static_assert(offsetof(ProjInfo, Client) == 12);
static_assert(offsetof(ProjInfo, ClientID) == 16);
static_assert(offsetof(ProjInfo, ProducerID) == 20);
static_assert(offsetof(ProjInfo, DirectorID) == 24);
static_assert(offsetof(ProjInfo, Producer) == 28);
static_assert(offsetof(ProjInfo, Director) == 32);
static_assert(offsetof(ProjInfo, Folder) == 36);
static_assert(offsetof(ProjInfo, Type) == 40);
static_assert(offsetof(ProjInfo, ProjTypeID) == 44);
static_assert(offsetof(ProjInfo, ProjCreateDate) == 48);
static_assert(offsetof(ProjInfo, DiscountVal) == 52);
static_assert(offsetof(ProjInfo, DiscountType) == 56);
static_assert(offsetof(ProjInfo, Notes) == 60);

static_assert(sizeof(SongInfo) == 76);
static_assert(offsetof(SongInfo, SongID) == 0);
static_assert(offsetof(SongInfo, ProjID) == 4);
static_assert(offsetof(SongInfo, Name) == 8);
static_assert(offsetof(SongInfo, Artist) == 12);
static_assert(offsetof(SongInfo, ArtistID) == 16);
static_assert(offsetof(SongInfo, Copyrights) == 20);
static_assert(offsetof(SongInfo, CopyrightsID) == 24);
static_assert(offsetof(SongInfo, Notes) == 28);
static_assert(offsetof(SongInfo, MixFile) == 32);
static_assert(offsetof(SongInfo, Folder) == 36);
static_assert(offsetof(SongInfo, SongFile) == 40);
static_assert(offsetof(SongInfo, Sequencer) == 44);
static_assert(offsetof(SongInfo, Client) == 48);
static_assert(offsetof(SongInfo, ClientID) == 52);
static_assert(offsetof(SongInfo, Producer) == 56);
static_assert(offsetof(SongInfo, ProducerID) == 60);
static_assert(offsetof(SongInfo, ComposerID) == 64);
static_assert(offsetof(SongInfo, WriterID) == 68);
static_assert(offsetof(SongInfo, ExData) == 72);

static_assert(sizeof(TrackInfo) == 72);
static_assert(offsetof(TrackInfo, TrackID) == 0);
static_assert(offsetof(TrackInfo, SongID) == 4);
static_assert(offsetof(TrackInfo, Number) == 8);
static_assert(offsetof(TrackInfo, ExData) == 12);
static_assert(offsetof(TrackInfo, Name) == 16);
static_assert(offsetof(TrackInfo, Type) == 20);
static_assert(offsetof(TrackInfo, TypeID) == 24);
static_assert(offsetof(TrackInfo, Date) == 28);
static_assert(offsetof(TrackInfo, TDate) == 32);
static_assert(offsetof(TrackInfo, Performer) == 36);
static_assert(offsetof(TrackInfo, PerformerID) == 40);
static_assert(offsetof(TrackInfo, Destination) == 44);
static_assert(offsetof(TrackInfo, DestinationID) == 48);
static_assert(offsetof(TrackInfo, EngineerID) == 52);
static_assert(offsetof(TrackInfo, ProducerID) == 56);
static_assert(offsetof(TrackInfo, Status) == 60);
static_assert(offsetof(TrackInfo, Mode) == 64);
static_assert(offsetof(TrackInfo, Notes) == 68);

static_assert(sizeof(MixInfo) == 20);
static_assert(offsetof(MixInfo, RecID) == 0);
static_assert(offsetof(MixInfo, SongID) == 4);
static_assert(offsetof(MixInfo, Descript) == 8);
static_assert(offsetof(MixInfo, Path) == 12);
static_assert(offsetof(MixInfo, ExData) == 16);

static_assert(sizeof(SessionInfo) == 64);
static_assert(offsetof(SessionInfo, ProjID) == 0);
static_assert(offsetof(SessionInfo, SessionID) == 4);
static_assert(offsetof(SessionInfo, SongName) == 8);
static_assert(offsetof(SessionInfo, SongID) == 12);
static_assert(offsetof(SessionInfo, Engineer) == 16);
static_assert(offsetof(SessionInfo, ArtistID) == 20);
static_assert(offsetof(SessionInfo, Reserved) == 24);
static_assert(offsetof(SessionInfo, RecDate) == 28);
static_assert(offsetof(SessionInfo, StartTime) == 32);
static_assert(offsetof(SessionInfo, EndTime) == 36);
static_assert(offsetof(SessionInfo, Total) == 40);
static_assert(offsetof(SessionInfo, Notes) == 44);
static_assert(offsetof(SessionInfo, Client) == 48);
static_assert(offsetof(SessionInfo, ClientID) == 52);
static_assert(offsetof(SessionInfo, RoomID) == 56);
static_assert(offsetof(SessionInfo, ExData) == 60);

static_assert(sizeof(SessionExInfo) == 76);
static_assert(offsetof(SessionExInfo, ProjID) == 0);
static_assert(offsetof(SessionExInfo, SessionID) == 4);
static_assert(offsetof(SessionExInfo, SongName) == 8);
static_assert(offsetof(SessionExInfo, SongID) == 12);
static_assert(offsetof(SessionExInfo, Engineer) == 16);
static_assert(offsetof(SessionExInfo, ArtistID) == 20);
static_assert(offsetof(SessionExInfo, Reserved) == 24);
static_assert(offsetof(SessionExInfo, RecDate) == 28);
static_assert(offsetof(SessionExInfo, StartTime) == 32);
static_assert(offsetof(SessionExInfo, EndTime) == 36);
static_assert(offsetof(SessionExInfo, Total) == 40);
static_assert(offsetof(SessionExInfo, Notes) == 44);
static_assert(offsetof(SessionExInfo, Client) == 48);
static_assert(offsetof(SessionExInfo, ClientID) == 52);
static_assert(offsetof(SessionExInfo, RoomID) == 56);
static_assert(offsetof(SessionExInfo, ExData) == 60);
static_assert(offsetof(SessionExInfo, FromDate) == 64);
static_assert(offsetof(SessionExInfo, ToDate) == 68);
static_assert(offsetof(SessionExInfo, DateFlags) == 72);

static_assert(sizeof(ParticInfo) == 36);
static_assert(offsetof(ParticInfo, RecID) == 0);
static_assert(offsetof(ParticInfo, SessionID) == 4);
static_assert(offsetof(ParticInfo, ContactID) == 8);
static_assert(offsetof(ParticInfo, CategoryID) == 12);
static_assert(offsetof(ParticInfo, ServiceID) == 16);
static_assert(offsetof(ParticInfo, Duration) == 20);
static_assert(offsetof(ParticInfo, Communicate) == 24);
static_assert(offsetof(ParticInfo, Notes) == 28);
static_assert(offsetof(ParticInfo, ExData) == 32);

static_assert(sizeof(ProjPayInfo) == 28);
static_assert(offsetof(ProjPayInfo, RecID) == 0);
static_assert(offsetof(ProjPayInfo, ProjID) == 4);
static_assert(offsetof(ProjPayInfo, Date) == 8);
static_assert(offsetof(ProjPayInfo, Details) == 12);
static_assert(offsetof(ProjPayInfo, ClientID) == 16);
static_assert(offsetof(ProjPayInfo, Pay) == 20);
static_assert(offsetof(ProjPayInfo, ExData) == 24);

static_assert(sizeof(ProjActInfo) == 44);
static_assert(offsetof(ProjActInfo, RecID) == 0);
static_assert(offsetof(ProjActInfo, ProjID) == 4);
static_assert(offsetof(ProjActInfo, CatID) == 8);
static_assert(offsetof(ProjActInfo, ItemID) == 12);
static_assert(offsetof(ProjActInfo, QuantType) == 16);
static_assert(offsetof(ProjActInfo, Date) == 20);
static_assert(offsetof(ProjActInfo, Category) == 24);
static_assert(offsetof(ProjActInfo, Item) == 28);
static_assert(offsetof(ProjActInfo, Quantity) == 32);
static_assert(offsetof(ProjActInfo, Fee) == 36);
static_assert(offsetof(ProjActInfo, ExData) == 40);

static_assert(sizeof(ClientInfo) == 108);
static_assert(offsetof(ClientInfo, ClientID) == 0);
static_assert(offsetof(ClientInfo, Name) == 4);
static_assert(offsetof(ClientInfo, LastName) == 8);
static_assert(offsetof(ClientInfo, Company) == 12);
static_assert(offsetof(ClientInfo, Title) == 16);
static_assert(offsetof(ClientInfo, CategoryID) == 20);
static_assert(offsetof(ClientInfo, CatIDs) == 24);
static_assert(offsetof(ClientInfo, Address) == 28);
static_assert(offsetof(ClientInfo, Country) == 32);
static_assert(offsetof(ClientInfo, State) == 36);
static_assert(offsetof(ClientInfo, City) == 40);
static_assert(offsetof(ClientInfo, ZipCode) == 44);
static_assert(offsetof(ClientInfo, WebSite) == 48);
static_assert(offsetof(ClientInfo, Email) == 52);
static_assert(offsetof(ClientInfo, Fax) == 56);
static_assert(offsetof(ClientInfo, Phone1) == 60);
static_assert(offsetof(ClientInfo, Phone2) == 64);
static_assert(offsetof(ClientInfo, Phone3) == 68);
static_assert(offsetof(ClientInfo, Phone4) == 72);
static_assert(offsetof(ClientInfo, Phone5) == 76);
static_assert(offsetof(ClientInfo, Phone1Descript) == 80);
static_assert(offsetof(ClientInfo, Phone2Descript) == 84);
static_assert(offsetof(ClientInfo, Phone3Descript) == 88);
static_assert(offsetof(ClientInfo, Phone4Descript) == 92);
static_assert(offsetof(ClientInfo, Phone5Descript) == 96);
static_assert(offsetof(ClientInfo, Notes) == 100);
static_assert(offsetof(ClientInfo, SearchName) == 104);

static_assert(sizeof(ConCatInfo) == 16);
static_assert(offsetof(ConCatInfo, RecID) == 0);
static_assert(offsetof(ConCatInfo, Name) == 4);
static_assert(offsetof(ConCatInfo, Type) == 8);
static_assert(offsetof(ConCatInfo, ExData) == 12);

static_assert(sizeof(MsgInfo) == 28);
static_assert(offsetof(MsgInfo, RecID) == 0);
static_assert(offsetof(MsgInfo, ContactID) == 4);
static_assert(offsetof(MsgInfo, ConnectType) == 8);
static_assert(offsetof(MsgInfo, Date) == 12);
static_assert(offsetof(MsgInfo, Descript) == 16);
static_assert(offsetof(MsgInfo, Details) == 20);
static_assert(offsetof(MsgInfo, ExData) == 24);

static_assert(sizeof(ServiceInfo) == 32);
static_assert(offsetof(ServiceInfo, RecID) == 0);
static_assert(offsetof(ServiceInfo, Name) == 4);
static_assert(offsetof(ServiceInfo, ContactID) == 8);
static_assert(offsetof(ServiceInfo, CategoryID) == 12);
static_assert(offsetof(ServiceInfo, TimeUnit) == 16);
static_assert(offsetof(ServiceInfo, RoomID) == 20);
static_assert(offsetof(ServiceInfo, Price) == 24);
static_assert(offsetof(ServiceInfo, ExData) == 28);

static_assert(sizeof(EngineerInfo) == 12);
static_assert(offsetof(EngineerInfo, RecID) == 0);
static_assert(offsetof(EngineerInfo, Name) == 4);
static_assert(offsetof(EngineerInfo, Price) == 8);

static_assert(sizeof(SeqInfo) == 12);
static_assert(offsetof(SeqInfo, RecID) == 0);
static_assert(offsetof(SeqInfo, Name) == 4);
static_assert(offsetof(SeqInfo, Path) == 8);

static_assert(sizeof(RoomInfo) == 20);
static_assert(offsetof(RoomInfo, RecID) == 0);
static_assert(offsetof(RoomInfo, Name) == 4);
static_assert(offsetof(RoomInfo, BasePrice) == 8);
static_assert(offsetof(RoomInfo, FullPrice) == 12);
static_assert(offsetof(RoomInfo, ExData) == 16);

static_assert(sizeof(StockInfo) == 48);
static_assert(offsetof(StockInfo, StockID) == 0);
static_assert(offsetof(StockInfo, Name) == 4);
static_assert(offsetof(StockInfo, Type) == 8);
static_assert(offsetof(StockInfo, TypeID) == 12);
static_assert(offsetof(StockInfo, Quantity) == 16);
static_assert(offsetof(StockInfo, Supplier) == 20);
static_assert(offsetof(StockInfo, SupplierID) == 24);
static_assert(offsetof(StockInfo, Date) == 28);
static_assert(offsetof(StockInfo, Cost) == 32);
static_assert(offsetof(StockInfo, Notes) == 36);
static_assert(offsetof(StockInfo, InStock) == 40);
static_assert(offsetof(StockInfo, ExData) == 44);

static_assert(sizeof(SupplyAct) == 40);
static_assert(offsetof(SupplyAct, ActionID) == 0);
static_assert(offsetof(SupplyAct, StockID) == 4);
static_assert(offsetof(SupplyAct, ProjID) == 8);
static_assert(offsetof(SupplyAct, StockName) == 12);
static_assert(offsetof(SupplyAct, StockType) == 16);
static_assert(offsetof(SupplyAct, Client) == 20);
static_assert(offsetof(SupplyAct, ClientID) == 24);
static_assert(offsetof(SupplyAct, Date) == 28);
static_assert(offsetof(SupplyAct, Quantity) == 32);
static_assert(offsetof(SupplyAct, ExData) == 36);

static_assert(sizeof(SupplyExInfo) == 52);
static_assert(offsetof(SupplyExInfo, ActionID) == 0);
static_assert(offsetof(SupplyExInfo, StockID) == 4);
static_assert(offsetof(SupplyExInfo, ProjID) == 8);
static_assert(offsetof(SupplyExInfo, StockName) == 12);
static_assert(offsetof(SupplyExInfo, StockType) == 16);
static_assert(offsetof(SupplyExInfo, Client) == 20);
static_assert(offsetof(SupplyExInfo, ClientID) == 24);
static_assert(offsetof(SupplyExInfo, Date) == 28);
static_assert(offsetof(SupplyExInfo, Quantity) == 32);
static_assert(offsetof(SupplyExInfo, ExData) == 36);
static_assert(offsetof(SupplyExInfo, FromDate) == 40);
static_assert(offsetof(SupplyExInfo, ToDate) == 44);
static_assert(offsetof(SupplyExInfo, DateFlags) == 48);

static_assert(sizeof(StockTypeInfo) == 24);
static_assert(offsetof(StockTypeInfo, TypeID) == 0);
static_assert(offsetof(StockTypeInfo, TypeName) == 4);
static_assert(offsetof(StockTypeInfo, InStock) == 8);
static_assert(offsetof(StockTypeInfo, ItemPrice) == 12);
static_assert(offsetof(StockTypeInfo, ExData) == 16);
static_assert(offsetof(StockTypeInfo, Spare) == 20);

static_assert(sizeof(EquipInfo) == 32);
static_assert(offsetof(EquipInfo, RecID) == 0);
static_assert(offsetof(EquipInfo, Reserved1) == 4);
static_assert(offsetof(EquipInfo, Name) == 8);
static_assert(offsetof(EquipInfo, Reserved2) == 12);
static_assert(offsetof(EquipInfo, ActDate) == 16);
static_assert(offsetof(EquipInfo, Action) == 20);
static_assert(offsetof(EquipInfo, Cost) == 24);
static_assert(offsetof(EquipInfo, Notes) == 28);

static_assert(sizeof(LibGrpInfo) == 8);
static_assert(offsetof(LibGrpInfo, GroupID) == 0);
static_assert(offsetof(LibGrpInfo, Name) == 4);

static_assert(sizeof(MediaLibInfo) == 16);
static_assert(offsetof(MediaLibInfo, LibID) == 0);
static_assert(offsetof(MediaLibInfo, GroupID) == 4);
static_assert(offsetof(MediaLibInfo, Name) == 8);
static_assert(offsetof(MediaLibInfo, Descript) == 12);

static_assert(sizeof(MediaFileInfo) == 16);
static_assert(offsetof(MediaFileInfo, RecID) == 0);
static_assert(offsetof(MediaFileInfo, LibID) == 4);
static_assert(offsetof(MediaFileInfo, Path) == 8);
static_assert(offsetof(MediaFileInfo, Descript) == 12);

static_assert(sizeof(BookingInfo) == 56);
static_assert(offsetof(BookingInfo, RecID) == 0);
static_assert(offsetof(BookingInfo, Reserved) == 4);
static_assert(offsetof(BookingInfo, DateStart) == 8);
static_assert(offsetof(BookingInfo, DateEnd) == 12);
static_assert(offsetof(BookingInfo, ClientID) == 16);
static_assert(offsetof(BookingInfo, ClientName) == 20);
static_assert(offsetof(BookingInfo, ProjID) == 24);
static_assert(offsetof(BookingInfo, RoomID) == 28);
static_assert(offsetof(BookingInfo, EngineerID) == 32);
static_assert(offsetof(BookingInfo, EngineerName) == 36);
static_assert(offsetof(BookingInfo, SessionID) == 40);
static_assert(offsetof(BookingInfo, StatusID) == 44);
static_assert(offsetof(BookingInfo, Notes) == 48);
static_assert(offsetof(BookingInfo, ExData) == 52);

static_assert(sizeof(InvoiceInfo) == 80);
static_assert(offsetof(InvoiceInfo, RecID) == 0);
static_assert(offsetof(InvoiceInfo, InvoiceID) == 4);
static_assert(offsetof(InvoiceInfo, ClientName) == 8);
static_assert(offsetof(InvoiceInfo, ClientInfo) == 12);
static_assert(offsetof(InvoiceInfo, InvTaxIDs) == 16);
static_assert(offsetof(InvoiceInfo, Date) == 20);
static_assert(offsetof(InvoiceInfo, FromDate) == 24);
static_assert(offsetof(InvoiceInfo, ToDate) == 28);
static_assert(offsetof(InvoiceInfo, SubTotal) == 32);
static_assert(offsetof(InvoiceInfo, Tax) == 36);
static_assert(offsetof(InvoiceInfo, Tax_SubTotal) == 40);
static_assert(offsetof(InvoiceInfo, Discount) == 44);
static_assert(offsetof(InvoiceInfo, Discount_SubTotal) == 48);
static_assert(offsetof(InvoiceInfo, Total) == 52);
static_assert(offsetof(InvoiceInfo, Notes) == 56);
static_assert(offsetof(InvoiceInfo, ExData) == 60);
static_assert(offsetof(InvoiceInfo, fTax) == 64);
static_assert(offsetof(InvoiceInfo, fDiscount) == 68);
static_assert(offsetof(InvoiceInfo, Paymetns) == 72);
static_assert(offsetof(InvoiceInfo, Balance) == 76);

static_assert(sizeof(InvParamsInfo) == 48);
static_assert(offsetof(InvParamsInfo, RecID) == 0);
static_assert(offsetof(InvParamsInfo, InvoiceID) == 4);
static_assert(offsetof(InvParamsInfo, Type) == 8);
static_assert(offsetof(InvParamsInfo, Name) == 12);
static_assert(offsetof(InvParamsInfo, TaxIDs) == 16);
static_assert(offsetof(InvParamsInfo, DWQuantity) == 20);
static_assert(offsetof(InvParamsInfo, FQuantity) == 24);
static_assert(offsetof(InvParamsInfo, ItemPrice) == 28);
static_assert(offsetof(InvParamsInfo, Total) == 32);
static_assert(offsetof(InvParamsInfo, ExData) == 36);
static_assert(offsetof(InvParamsInfo, Date) == 40);
static_assert(offsetof(InvParamsInfo, Details) == 44);

static_assert(sizeof(InvoiceDef) == 32);
static_assert(offsetof(InvoiceDef, StudioName) == 0);
static_assert(offsetof(InvoiceDef, StudioDetails) == 4);
static_assert(offsetof(InvoiceDef, BaseCounter) == 8);
static_assert(offsetof(InvoiceDef, LastUsedCounter) == 12);
static_assert(offsetof(InvoiceDef, VAT1) == 16);
static_assert(offsetof(InvoiceDef, VAT2) == 20);
static_assert(offsetof(InvoiceDef, Tax) == 24);
static_assert(offsetof(InvoiceDef, ExData) == 28);

static_assert(sizeof(CustomInfo) == 4);
static_assert(offsetof(CustomInfo, Reserved) == 0);

static_assert(sizeof(GearInfo) == 44);
static_assert(offsetof(GearInfo, RecID) == 0);
static_assert(offsetof(GearInfo, Manufacturer) == 4);
static_assert(offsetof(GearInfo, Model) == 8);
static_assert(offsetof(GearInfo, SerialNo) == 12);
static_assert(offsetof(GearInfo, StatusID) == 16);
static_assert(offsetof(GearInfo, RoomID) == 20);
static_assert(offsetof(GearInfo, CategoryID) == 24);
static_assert(offsetof(GearInfo, WarrantyDate) == 28);
static_assert(offsetof(GearInfo, PurchaseDate) == 32);
static_assert(offsetof(GearInfo, Cost) == 36);
static_assert(offsetof(GearInfo, ExData) == 40);

static_assert(sizeof(GearServInfo) == 32);
static_assert(offsetof(GearServInfo, RecID) == 0);
static_assert(offsetof(GearServInfo, GearID) == 4);
static_assert(offsetof(GearServInfo, RoomID) == 8);
static_assert(offsetof(GearServInfo, Name) == 12);
static_assert(offsetof(GearServInfo, TimeUnitID) == 16);
static_assert(offsetof(GearServInfo, ServiceTypeID) == 20);
static_assert(offsetof(GearServInfo, Price) == 24);
static_assert(offsetof(GearServInfo, ExData) == 28);

static_assert(sizeof(GRepairsInfo) == 48);
static_assert(offsetof(GRepairsInfo, RecID) == 0);
static_assert(offsetof(GRepairsInfo, GearID) == 4);
static_assert(offsetof(GRepairsInfo, GearName) == 8);
static_assert(offsetof(GRepairsInfo, SendDate) == 12);
static_assert(offsetof(GRepairsInfo, ReturnDate) == 16);
static_assert(offsetof(GRepairsInfo, WarrantyDate) == 20);
static_assert(offsetof(GRepairsInfo, ClaimNo) == 24);
static_assert(offsetof(GRepairsInfo, Technician) == 28);
static_assert(offsetof(GRepairsInfo, TechID) == 32);
static_assert(offsetof(GRepairsInfo, Cost) == 36);
static_assert(offsetof(GRepairsInfo, Description) == 40);
static_assert(offsetof(GRepairsInfo, ExData) == 44);

static_assert(sizeof(GearCatInfo) == 12);
static_assert(offsetof(GearCatInfo, RecID) == 0);
static_assert(offsetof(GearCatInfo, Name) == 4);
static_assert(offsetof(GearCatInfo, ExData) == 8);

static_assert(sizeof(GearRentInfo) == 56);
static_assert(offsetof(GearRentInfo, RecID) == 0);
static_assert(offsetof(GearRentInfo, ServiceName) == 4);
static_assert(offsetof(GearRentInfo, GearID) == 8);
static_assert(offsetof(GearRentInfo, ServiceID) == 12);
static_assert(offsetof(GearRentInfo, ProjID) == 16);
static_assert(offsetof(GearRentInfo, Date) == 20);
static_assert(offsetof(GearRentInfo, Quantity) == 24);
static_assert(offsetof(GearRentInfo, QuantType) == 28);
static_assert(offsetof(GearRentInfo, ClientID) == 32);
static_assert(offsetof(GearRentInfo, RoomID) == 36);
static_assert(offsetof(GearRentInfo, ExData) == 40);
static_assert(offsetof(GearRentInfo, DateFrom) == 44);
static_assert(offsetof(GearRentInfo, DateTo) == 48);
static_assert(offsetof(GearRentInfo, DateFlags) == 52);

#endif

namespace {

struct Layout {
    const char* record;
    std::size_t size;
    const char* members;  // each "offset type name", separated by commas
};

// As the document for hosts lists them.
constexpr Layout kLayouts[] = {
    {"HeadInfo", 12, "0 LONG DBversion, 4 LONG Color1, 8 LONG Color2"},
    {"CompactDBInfo", 4, "0 LONG Reserved"},
    {"ProjInfo", 64,
     "0 LONG ProjID, 4 LONG ExData, 8 CString Name, 12 CString Client, 16 LONG ClientID, "
     "20 LONG ProducerID, 24 LONG DirectorID, 28 CString Producer, 32 CString Director, "
     "36 CString Folder, 40 CString Type, 44 LONG ProjTypeID, 48 CTime ProjCreateDate, "
     "52 float DiscountVal, 56 LONG DiscountType, 60 CString Notes"},
    {"SongInfo", 76,
     "0 LONG SongID, 4 LONG ProjID, 8 CString Name, 12 CString Artist, 16 LONG ArtistID, "
     "20 CString Copyrights, 24 LONG CopyrightsID, 28 CString Notes, 32 CString MixFile, "
     "36 CString Folder, 40 CString SongFile, 44 CString Sequencer, 48 CString Client, 52 LONG ClientID, "
     "56 CString Producer, 60 LONG ProducerID, 64 LONG ComposerID, 68 LONG WriterID, 72 LONG ExData"},
    {"TrackInfo", 72,
     "0 LONG TrackID, 4 LONG SongID, 8 LONG Number, 12 LONG ExData, 16 CString Name, 20 CString Type, "
     "24 LONG TypeID, 28 CString Date, 32 CTime TDate, 36 CString Performer, 40 LONG PerformerID, "
     "44 CString Destination, 48 LONG DestinationID, 52 LONG EngineerID, 56 LONG ProducerID, "
     "60 LONG Status, 64 LONG Mode, 68 CString Notes"},
    {"MixInfo", 20, "0 LONG RecID, 4 LONG SongID, 8 CString Descript, 12 CString Path, 16 LONG ExData"},
    {"SessionInfo", 64,
     "0 LONG ProjID, 4 LONG SessionID, 8 CString SongName, 12 LONG SongID, 16 CString Engineer, "
     "20 LONG ArtistID, 24 CString Reserved, 28 CTime RecDate, 32 CString StartTime, 36 CString EndTime, "
     "40 CString Total, 44 CString Notes, 48 CString Client, 52 LONG ClientID, 56 LONG RoomID, "
     "60 LONG ExData"},
    {"SessionExInfo", 76,
     "0 LONG ProjID, 4 LONG SessionID, 8 CString SongName, 12 LONG SongID, 16 CString Engineer, "
     "20 LONG ArtistID, 24 CString Reserved, 28 CTime RecDate, 32 CString StartTime, 36 CString EndTime, "
     "40 CString Total, 44 CString Notes, 48 CString Client, 52 LONG ClientID, 56 LONG RoomID, "
     "60 LONG ExData, 64 CTime FromDate, 68 CTime ToDate, 72 DWORD DateFlags"},
    {"ParticInfo", 36,
     "0 LONG RecID, 4 LONG SessionID, 8 LONG ContactID, 12 LONG CategoryID, 16 LONG ServiceID, "
     "20 float Duration, 24 CString Communicate, 28 CString Notes, 32 LONG ExData"},
    {"ProjPayInfo", 28,
     "0 LONG RecID, 4 LONG ProjID, 8 CTime Date, 12 CString Details, 16 LONG ClientID, 20 float Pay, "
     "24 LONG ExData"},
    {"ProjActInfo", 44,
     "0 LONG RecID, 4 LONG ProjID, 8 LONG CatID, 12 LONG ItemID, 16 LONG QuantType, 20 CTime Date, "
     "24 CString Category, 28 CString Item, 32 float Quantity, 36 float Fee, 40 LONG ExData"},
    {"ClientInfo", 108,
     "0 LONG ClientID, 4 CString Name, 8 CString LastName, 12 CString Company, 16 CString Title, "
     "20 LONG CategoryID, 24 CString CatIDs, 28 CString Address, 32 CString Country, 36 CString State, "
     "40 CString City, 44 CString ZipCode, 48 CString WebSite, 52 CString Email, 56 CString Fax, "
     "60 CString Phone1, 64 CString Phone2, 68 CString Phone3, 72 CString Phone4, 76 CString Phone5, "
     "80 CString Phone1Descript, 84 CString Phone2Descript, 88 CString Phone3Descript, "
     "92 CString Phone4Descript, 96 CString Phone5Descript, 100 CString Notes, 104 CString SearchName"},
    {"ConCatInfo", 16, "0 LONG RecID, 4 CString Name, 8 LONG Type, 12 LONG ExData"},
    {"MsgInfo", 28,
     "0 LONG RecID, 4 LONG ContactID, 8 CString ConnectType, 12 CTime Date, 16 CString Descript, "
     "20 CString Details, 24 LONG ExData"},
    {"ServiceInfo", 32,
     "0 LONG RecID, 4 CString Name, 8 LONG ContactID, 12 LONG CategoryID, 16 LONG TimeUnit, "
     "20 LONG RoomID, 24 float Price, 28 LONG ExData"},
    {"EngineerInfo", 12, "0 LONG RecID, 4 CString Name, 8 float Price"},
    {"SeqInfo", 12, "0 LONG RecID, 4 CString Name, 8 CString Path"},
    {"RoomInfo", 20, "0 LONG RecID, 4 CString Name, 8 float BasePrice, 12 float FullPrice, 16 LONG ExData"},
    {"StockInfo", 48,
     "0 LONG StockID, 4 CString Name, 8 CString Type, 12 LONG TypeID, 16 LONG Quantity, "
     "20 CString Supplier, 24 LONG SupplierID, 28 CTime Date, 32 float Cost, 36 CString Notes, "
     "40 LONG InStock, 44 LONG ExData"},
    {"SupplyAct", 40,
     "0 LONG ActionID, 4 LONG StockID, 8 LONG ProjID, 12 CString StockName, 16 CString StockType, "
     "20 CString Client, 24 LONG ClientID, 28 CTime Date, 32 LONG Quantity, 36 LONG ExData"},
    {"SupplyExInfo", 52,
     "0 LONG ActionID, 4 LONG StockID, 8 LONG ProjID, 12 CString StockName, 16 CString StockType, "
     "20 CString Client, 24 LONG ClientID, 28 CTime Date, 32 LONG Quantity, 36 LONG ExData, "
     "40 CTime FromDate, 44 CTime ToDate, 48 DWORD DateFlags"},
    {"StockTypeInfo", 24,
     "0 LONG TypeID, 4 CString TypeName, 8 LONG InStock, 12 float ItemPrice, 16 LONG ExData, "
     "20 CString Spare"},
    {"EquipInfo", 32,
     "0 LONG RecID, 4 LONG Reserved1, 8 CString Name, 12 LONG Reserved2, 16 CTime ActDate, "
     "20 CString Action, 24 CString Cost, 28 CString Notes"},
    {"LibGrpInfo", 8, "0 LONG GroupID, 4 CString Name"},
    {"MediaLibInfo", 16, "0 LONG LibID, 4 LONG GroupID, 8 CString Name, 12 CString Descript"},
    {"MediaFileInfo", 16, "0 LONG RecID, 4 LONG LibID, 8 CString Path, 12 CString Descript"},
    {"BookingInfo", 56,
     "0 LONG RecID, 4 LONG Reserved, 8 CTime DateStart, 12 CTime DateEnd, 16 LONG ClientID, "
     "20 CString ClientName, 24 LONG ProjID, 28 LONG RoomID, 32 LONG EngineerID, 36 CString EngineerName, "
     "40 LONG SessionID, 44 LONG StatusID, 48 CString Notes, 52 LONG ExData"},
    {"InvoiceInfo", 80,
     "0 LONG RecID, 4 LONG InvoiceID, 8 CString ClientName, 12 CString ClientInfo, 16 CString InvTaxIDs, "
     "20 CTime Date, 24 CTime FromDate, 28 CTime ToDate, 32 float SubTotal, 36 LONG Tax, "
     "40 float Tax_SubTotal, 44 LONG Discount, 48 float Discount_SubTotal, 52 float Total, "
     "56 CString Notes, 60 LONG ExData, 64 float fTax, 68 float fDiscount, 72 float Paymetns, "
     "76 float Balance"},
    {"InvParamsInfo", 48,
     "0 LONG RecID, 4 LONG InvoiceID, 8 LONG Type, 12 CString Name, 16 CString TaxIDs, "
     "20 LONG DWQuantity, 24 float FQuantity, 28 float ItemPrice, 32 float Total, 36 LONG ExData, "
     "40 CTime Date, 44 CString Details"},
    {"InvoiceDef", 32,
     "0 CString StudioName, 4 CString StudioDetails, 8 LONG BaseCounter, 12 LONG LastUsedCounter, "
     "16 LONG VAT1, 20 LONG VAT2, 24 float Tax, 28 LONG ExData"},
    {"CustomInfo", 4, "0 LONG Reserved"},
    {"GearInfo", 44,
     "0 LONG RecID, 4 CString Manufacturer, 8 CString Model, 12 CString SerialNo, 16 LONG StatusID, "
     "20 LONG RoomID, 24 LONG CategoryID, 28 CTime WarrantyDate, 32 CTime PurchaseDate, 36 float Cost, "
     "40 LONG ExData"},
    {"GearServInfo", 32,
     "0 LONG RecID, 4 LONG GearID, 8 LONG RoomID, 12 CString Name, 16 LONG TimeUnitID, "
     "20 LONG ServiceTypeID, 24 float Price, 28 LONG ExData"},
    {"GRepairsInfo", 48,
     "0 LONG RecID, 4 LONG GearID, 8 CString GearName, 12 CTime SendDate, 16 CTime ReturnDate, "
     "20 CTime WarrantyDate, 24 CString ClaimNo, 28 CString Technician, 32 LONG TechID, 36 float Cost, "
     "40 CString Description, 44 LONG ExData"},
    {"GearCatInfo", 12, "0 LONG RecID, 4 CString Name, 8 LONG ExData"},
    {"GearRentInfo", 56,
     "0 LONG RecID, 4 CString ServiceName, 8 LONG GearID, 12 LONG ServiceID, 16 LONG ProjID, "
     "20 CTime Date, 24 float Quantity, 28 LONG QuantType, 32 LONG ClientID, 36 LONG RoomID, "
     "40 LONG ExData, 44 CTime DateFrom, 48 CTime DateTo, 52 DWORD DateFlags"},
};

// Offset of each member in a 64-bit host, with pointers aligned to their size; the record's size.
struct WideLayout {
    std::string members;  // "8/16 CString Name", separated by ", "
    std::size_t size = 0;
};

WideLayout wide_layout(const Layout& layout) {
    WideLayout wide;
    std::size_t alignment = 4;
    std::istringstream members(layout.members);
    for (std::string offset, type, name; members >> offset >> type >> name;) {
        const std::size_t size = type == "CString" ? 8 : 4;
        alignment = std::max(alignment, size);
        wide.size = (wide.size + size - 1) / size * size;
        wide.members +=
            (wide.members.empty() ? "" : " ") + offset + "/" + std::to_string(wide.size) + " " + type + " " + name;
        wide.size += size;
    }
    wide.size = (wide.size + alignment - 1) / alignment * alignment;
    return wide;
}

#define SIZE_OF(record) \
    { #record, sizeof(record) }
const std::map<std::string, std::size_t> kSizes = {
    SIZE_OF(HeadInfo),      SIZE_OF(CompactDBInfo), SIZE_OF(ProjInfo),    SIZE_OF(SongInfo),
    SIZE_OF(TrackInfo),     SIZE_OF(MixInfo),       SIZE_OF(SessionInfo), SIZE_OF(SessionExInfo),
    SIZE_OF(ParticInfo),    SIZE_OF(ProjPayInfo),   SIZE_OF(ProjActInfo), SIZE_OF(ClientInfo),
    SIZE_OF(ConCatInfo),    SIZE_OF(MsgInfo),       SIZE_OF(ServiceInfo), SIZE_OF(EngineerInfo),
    SIZE_OF(SeqInfo),       SIZE_OF(RoomInfo),      SIZE_OF(StockInfo),   SIZE_OF(SupplyAct),
    SIZE_OF(SupplyExInfo),  SIZE_OF(StockTypeInfo), SIZE_OF(EquipInfo),   SIZE_OF(LibGrpInfo),
    SIZE_OF(MediaLibInfo),  SIZE_OF(MediaFileInfo), SIZE_OF(BookingInfo), SIZE_OF(InvoiceInfo),
    SIZE_OF(InvParamsInfo), SIZE_OF(InvoiceDef),    SIZE_OF(CustomInfo),  SIZE_OF(GearInfo),
    SIZE_OF(GearServInfo),  SIZE_OF(GRepairsInfo),  SIZE_OF(GearCatInfo), SIZE_OF(GearRentInfo),
};
#undef SIZE_OF

}  // namespace

TEST(RecordLayout, every_record_is_as_large_as_its_members_say) {
    for (const Layout& layout : kLayouts) {
        EXPECT_EQ(kSizes.at(layout.record), sizeof(void*) == 8 ? wide_layout(layout).size : layout.size)
            << layout.record;
    }
}

TEST(HostReference, lists_every_record_with_sizes_and_offsets) {
    std::ifstream in(KVDB_DOCS "/reference.md");
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    ASSERT_FALSE(text.empty());
    for (const Layout& layout : kLayouts) {
        const WideLayout wide = wide_layout(layout);
        const std::string row = std::string("| `") + layout.record + "` | " + std::to_string(layout.size) + "/" +
                                std::to_string(wide.size) + " | " + wide.members + " |\n";
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
}
