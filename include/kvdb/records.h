// The records that an application and the component exchange: one per table, owned by the caller and
// passed by address. Order, names and types of the members are the contract, slips of spelling
// included. Members that were never given a name are called Reserved or Spare.
//
// LONG is a 32-bit integer, CString one pointer, CTime 4 bytes. Dates travel as calendar dates except
// where a record says otherwise.
#pragma once

#include <kvdb/com.h>
#include <kvdb/cstring.h>
#include <kvdb/ctime.h>

// A host's own CString and CTime must not be found from here.
#ifdef KVDB_NO_VALUE_CLASSES
namespace kvdb {
inline namespace records {
#endif

// ---- Database ---------------------------------------------------------------------------------

// The header row of the studio file. `DBversion` is never written.
struct HeadInfo {
    LONG DBversion = 0;
    LONG Color1 = 0;
    LONG Color2 = 0;
};

// Never read by the component; only its address must be valid.
struct CompactDBInfo {
    LONG Reserved = 0;
};

// ---- Projects, songs and sessions -------------------------------------------------------------

// A project (`Projects`).
struct ProjInfo {
    LONG ProjID = 0;
    LONG ExData = 0;
    CString Name;
    CString Client;
    LONG ClientID = 0;
    LONG ProducerID = 0;
    LONG DirectorID = 0;
    CString Producer;
    CString Director;
    CString Folder;
    CString Type;
    LONG ProjTypeID = 0;
    CTime ProjCreateDate;
    float DiscountVal = 0;
    LONG DiscountType = 0;
    CString Notes;
};

// A song of a project (`Songs`).
struct SongInfo {
    LONG SongID = 0;
    LONG ProjID = 0;
    CString Name;
    CString Artist;
    LONG ArtistID = 0;
    CString Copyrights;
    LONG CopyrightsID = 0;
    CString Notes;
    CString MixFile;
    CString Folder;
    CString SongFile;
    CString Sequencer;
    CString Client;
    LONG ClientID = 0;
    CString Producer;
    LONG ProducerID = 0;
    LONG ComposerID = 0;
    LONG WriterID = 0;
    LONG ExData = 0;
};

// A track of a song (`Tracks`). `Date` is free text beside the calendar date `TDate`.
struct TrackInfo {
    LONG TrackID = 0;
    LONG SongID = 0;
    LONG Number = 0;
    LONG ExData = 0;
    CString Name;
    CString Type;
    LONG TypeID = 0;
    CString Date;
    CTime TDate;
    CString Performer;
    LONG PerformerID = 0;
    CString Destination;
    LONG DestinationID = 0;
    LONG EngineerID = 0;
    LONG ProducerID = 0;
    LONG Status = 0;
    LONG Mode = 0;
    CString Notes;
};

// A mix file of a song (`MixFiles`).
struct MixInfo {
    LONG RecID = 0;
    LONG SongID = 0;
    CString Descript;
    CString Path;
    LONG ExData = 0;
};

// A recording session of a project (`Sessions`). The key is the second member here.
struct SessionInfo {
    LONG ProjID = 0;
    LONG SessionID = 0;
    CString SongName;
    LONG SongID = 0;
    CString Engineer;
    LONG ArtistID = 0;
    CString Reserved;
    CTime RecDate;
    CString StartTime;
    CString EndTime;
    CString Total;
    CString Notes;
    CString Client;
    LONG ClientID = 0;
    LONG RoomID = 0;
    LONG ExData = 0;
};

// A session and, for the extended enumeration, the range of recording dates.
struct SessionExInfo {
    LONG ProjID = 0;
    LONG SessionID = 0;
    CString SongName;
    LONG SongID = 0;
    CString Engineer;
    LONG ArtistID = 0;
    CString Reserved;
    CTime RecDate;
    CString StartTime;
    CString EndTime;
    CString Total;
    CString Notes;
    CString Client;
    LONG ClientID = 0;
    LONG RoomID = 0;
    LONG ExData = 0;
    CTime FromDate;
    CTime ToDate;
    DWORD DateFlags = 0;  // bit 0: the first date applies; bit 1: the last
};

// A contact who took part in a session (`Participants`).
struct ParticInfo {
    LONG RecID = 0;
    LONG SessionID = 0;
    LONG ContactID = 0;
    LONG CategoryID = 0;
    LONG ServiceID = 0;
    float Duration = 0;
    CString Communicate;
    CString Notes;
    LONG ExData = 0;
};

// A payment for a project (`ProjPayments`).
struct ProjPayInfo {
    LONG RecID = 0;
    LONG ProjID = 0;
    CTime Date;
    CString Details;
    LONG ClientID = 0;
    float Pay = 0;
    LONG ExData = 0;
};

// An item or work charged on a project (`ProjActivities`).
struct ProjActInfo {
    LONG RecID = 0;
    LONG ProjID = 0;
    LONG CatID = 0;
    LONG ItemID = 0;
    LONG QuantType = 0;
    CTime Date;
    CString Category;
    CString Item;
    float Quantity = 0;
    float Fee = 0;
    LONG ExData = 0;
};

// ---- Contacts ---------------------------------------------------------------------------------

// A contact (`Clients`). `CatIDs` lists category keys, separated by ";"; `SearchName` is a filter only.
struct ClientInfo {
    LONG ClientID = 0;
    CString Name;
    CString LastName;
    CString Company;
    CString Title;
    LONG CategoryID = 0;
    CString CatIDs;
    CString Address;
    CString Country;
    CString State;
    CString City;
    CString ZipCode;
    CString WebSite;
    CString Email;
    CString Fax;
    CString Phone1;
    CString Phone2;
    CString Phone3;
    CString Phone4;
    CString Phone5;
    CString Phone1Descript;
    CString Phone2Descript;
    CString Phone3Descript;
    CString Phone4Descript;
    CString Phone5Descript;
    CString Notes;
    CString SearchName;
};

// A category of contacts (`ContactCategories`).
struct ConCatInfo {
    LONG RecID = 0;
    CString Name;
    LONG Type = 0;
    LONG ExData = 0;
};

// A message from or to a contact (`Messages`).
struct MsgInfo {
    LONG RecID = 0;
    LONG ContactID = 0;
    CString ConnectType;
    CTime Date;
    CString Descript;
    CString Details;
    LONG ExData = 0;
};

// A service that a contact renders (`Services`).
struct ServiceInfo {
    LONG RecID = 0;
    CString Name;
    LONG ContactID = 0;
    LONG CategoryID = 0;
    LONG TimeUnit = 0;
    LONG RoomID = 0;
    float Price = 0;
    LONG ExData = 0;
};

// ---- Definitions ------------------------------------------------------------------------------

// An engineer (`Def_Engineers`).
struct EngineerInfo {
    LONG RecID = 0;
    CString Name;
    float Price = 0;
};

// A sequencer program (`Def_Sequencer`).
struct SeqInfo {
    LONG RecID = 0;
    CString Name;
    CString Path;
};

// A room (`Def_Rooms`).
struct RoomInfo {
    LONG RecID = 0;
    CString Name;
    float BasePrice = 0;
    float FullPrice = 0;
    LONG ExData = 0;
};

// ---- Stock, supply and equipment --------------------------------------------------------------

// A purchase of stock (`Stock`).
struct StockInfo {
    LONG StockID = 0;
    CString Name;
    CString Type;
    LONG TypeID = 0;
    LONG Quantity = 0;
    CString Supplier;
    LONG SupplierID = 0;
    CTime Date;
    float Cost = 0;
    CString Notes;
    LONG InStock = 0;
    LONG ExData = 0;
};

// Stock handed out (`Supply`).
struct SupplyAct {
    LONG ActionID = 0;
    LONG StockID = 0;
    LONG ProjID = 0;
    CString StockName;
    CString StockType;
    CString Client;
    LONG ClientID = 0;
    CTime Date;
    LONG Quantity = 0;
    LONG ExData = 0;
};

// Stock handed out and, for the extended enumeration, the range of dates.
struct SupplyExInfo {
    LONG ActionID = 0;
    LONG StockID = 0;
    LONG ProjID = 0;
    CString StockName;
    CString StockType;
    CString Client;
    LONG ClientID = 0;
    CTime Date;
    LONG Quantity = 0;
    LONG ExData = 0;
    CTime FromDate;
    CTime ToDate;
    DWORD DateFlags = 0;  // bit 0: the first date applies; bit 1: the last
};

// A type of stock (`Def_StockTypes`). `Spare` is neither read nor written.
struct StockTypeInfo {
    LONG TypeID = 0;
    CString TypeName;
    LONG InStock = 0;
    float ItemPrice = 0;
    LONG ExData = 0;
    CString Spare;
};

// An equipment event (`Equipment`).
struct EquipInfo {
    LONG RecID = 0;
    LONG Reserved1 = 0;
    CString Name;
    LONG Reserved2 = 0;
    CTime ActDate;
    CString Action;
    CString Cost;
    CString Notes;
};

// ---- Media library ----------------------------------------------------------------------------

// A group of libraries (`LibGroups`).
struct LibGrpInfo {
    LONG GroupID = 0;
    CString Name;
};

// A library of a group (`MediaLibs`).
struct MediaLibInfo {
    LONG LibID = 0;
    LONG GroupID = 0;
    CString Name;
    CString Descript;
};

// A file of a library (`MediaFiles`).
struct MediaFileInfo {
    LONG RecID = 0;
    LONG LibID = 0;
    CString Path;
    CString Descript;
};

// ---- Bookings and invoices --------------------------------------------------------------------

// A booking (`Bookings`). Its dates keep hour and minute. As a filter, `ExData` 4 or 8 selects the bookings that start
// from `DateStart` to `DateEnd`, ascending or descending.
struct BookingInfo {
    LONG RecID = 0;
    LONG Reserved = 0;
    CTime DateStart;
    CTime DateEnd;
    LONG ClientID = 0;
    CString ClientName;
    LONG ProjID = 0;
    LONG RoomID = 0;
    LONG EngineerID = 0;
    CString EngineerName;
    LONG SessionID = 0;
    LONG StatusID = 0;
    CString Notes;
    LONG ExData = 0;
};

// An invoice (`Invoices`). `FromDate` and `ToDate` bound the enumeration and have no column.
struct InvoiceInfo {
    LONG RecID = 0;
    LONG InvoiceID = 0;
    CString ClientName;
    CString ClientInfo;
    CString InvTaxIDs;
    CTime Date;
    CTime FromDate;
    CTime ToDate;
    float SubTotal = 0;
    LONG Tax = 0;
    float Tax_SubTotal = 0;
    LONG Discount = 0;
    float Discount_SubTotal = 0;
    float Total = 0;
    CString Notes;
    LONG ExData = 0;
    float fTax = 0;
    float fDiscount = 0;
    float Paymetns = 0;
    float Balance = 0;
};

// A line of an invoice (`InvoiceParams`).
struct InvParamsInfo {
    LONG RecID = 0;
    LONG InvoiceID = 0;
    LONG Type = 0;
    CString Name;
    CString TaxIDs;
    LONG DWQuantity = 0;
    float FQuantity = 0;
    float ItemPrice = 0;
    float Total = 0;
    LONG ExData = 0;
    CTime Date;
    CString Details;
};

// Defaults for new invoices (`Def_Invoice`).
struct InvoiceDef {
    CString StudioName;
    CString StudioDetails;
    LONG BaseCounter = 0;
    LONG LastUsedCounter = 0;
    LONG VAT1 = 0;
    LONG VAT2 = 0;
    float Tax = 0;
    LONG ExData = 0;
};

// The custom query's record; belongs to the application, never read or written.
struct CustomInfo {
    LONG Reserved = 0;
};

// ---- Gear -------------------------------------------------------------------------------------

// A piece of gear (`Gear`).
struct GearInfo {
    LONG RecID = 0;
    CString Manufacturer;
    CString Model;
    CString SerialNo;
    LONG StatusID = 0;
    LONG RoomID = 0;
    LONG CategoryID = 0;
    CTime WarrantyDate;
    CTime PurchaseDate;
    float Cost = 0;
    LONG ExData = 0;
};

// A service of a piece of gear (`GearServices`).
struct GearServInfo {
    LONG RecID = 0;
    LONG GearID = 0;
    LONG RoomID = 0;
    CString Name;
    LONG TimeUnitID = 0;
    LONG ServiceTypeID = 0;
    float Price = 0;
    LONG ExData = 0;
};

// A repair (`GearRepairs`).
struct GRepairsInfo {
    LONG RecID = 0;
    LONG GearID = 0;
    CString GearName;
    CTime SendDate;
    CTime ReturnDate;
    CTime WarrantyDate;
    CString ClaimNo;
    CString Technician;
    LONG TechID = 0;
    float Cost = 0;
    CString Description;
    LONG ExData = 0;
};

// A category of gear (`GearCategories`).
struct GearCatInfo {
    LONG RecID = 0;
    CString Name;
    LONG ExData = 0;
};

// A rental (`GearRentals`). `DateFrom`, `DateTo` and `DateFlags` are a filter of `DBGate3` only.
struct GearRentInfo {
    LONG RecID = 0;
    CString ServiceName;
    LONG GearID = 0;
    LONG ServiceID = 0;
    LONG ProjID = 0;
    CTime Date;
    float Quantity = 0;
    LONG QuantType = 0;
    LONG ClientID = 0;
    LONG RoomID = 0;
    LONG ExData = 0;
    CTime DateFrom;
    CTime DateTo;
    DWORD DateFlags = 0;  // bit 0: the first date applies; bit 1: the last
};

#ifdef KVDB_NO_VALUE_CLASSES
}  // namespace records
}  // namespace kvdb
using namespace kvdb::records;
#endif
