// Settings of the chosen engine of Jet.
#include <array>

#include "engine/catalogue/jet_rows.h"

namespace korvex::engine {

using namespace jet_rows;

namespace {

constexpr Tweak engine(const Tweak& row) {
  Tweak result = ofJet(row, "Software\\Microsoft\\Jet\\4.0\\Engines\\JET 4.0",
                       "ENGINE INITIALIZATION SETTINGS");
  result.lacks = needsEngine;
  result.adapt = keyOfEngine;
  return result;
}

constexpr std::array kEngine{
    number(engine(
        {.property = "P_PageTimeout",
         .value = "PageTimeout",
         .byDefault = dword(5000),
         .control = "txtPageTimeout",
         .buddy = "PageTimeout",
         .caption = "PageTimeout",
         .toolTip = "Milliseconds until a page that was read is read anew...default is 5000"})),
    number(engine(
        {.property = "P_LockRetry",
         .value = "LockRetry",
         .byDefault = dword(20),
         .control = "txtLockRetry",
         .buddy = "LockRetry",
         .caption = "LockRetry",
         .toolTip = "How often a locked page is tried before the user is told...default is 20"})),
    number(engine(
        {.property = "P_MaxBufferSize",
         .value = "MaxBufferSize",
         .byDefault = dword(512),
         .control = "txtMaxBufferSize",
         .buddy = "MaxBufferSize",
         .lowest = 9,
         .highest = 4096,
         .rangeText = "The valid range for this setting is 9 - 4096.",
         .skipText =
             "The valid range for MaxBufferSize is 9 - 4096.\r\n\r\nThis change will be skipped.",
         .caption = "MaxBufferSize",
         .toolTip = "Memory for pages, in KB, 9 to 4096...default is 512"})),
    number(engine({.property = "P_CursorTimeout",
                   .value = "CursorTimeout",
                   .byDefault = dword(5),
                   .control = "txtCursorTimeout",
                   .buddy = "CursorTimeout",
                   .caption = "CursorTimeout",
                   .toolTip = "How long an idle reference to a page is kept...default is 5"})),
    words(engine({.property = "P_UserCommitSync",
                  .value = "UserCommitSync",
                  .byDefault = text("yes"),
                  .control = "txtUserCommitSync",
                  .buddy = "UserCommitSync",
                  .caption = "UserCommitSync",
                  .toolTip = "Whether changes of a transaction are on the disk when it ends: yes "
                             "or no...default is yes"})),
    number(engine({.property = "P_ForceOSFlush",
                   .value = "ForceOSFlush",
                   .byDefault = dword(0),
                   .control = "txtForceOSFlush",
                   .buddy = "ForceOSFlush",
                   .caption = "ForceOSFlush",
                   .toolTip = "Whether the system writes at once: 0 or 1...default is 0"})),
    words(engine({.property = "P_ImplicitCommitSync",
                  .value = "ImplicitCommitSync",
                  .byDefault = text("no"),
                  .control = "txtImplicitCommitSync",
                  .buddy = "ImplicitCommitSync",
                  .caption = "ImplicitCommitSync",
                  .toolTip = "Whether changes outside a transaction are on the disk at once: yes "
                             "or no...default is no"})),
    number(
        engine({.property = "P_CommitLockRetry",
                .value = "CommitLockRetry",
                .byDefault = dword(20),
                .control = "txtCommitLockRetry",
                .buddy = "CommitLockRetry",
                .caption = "CommitLockRetry",
                .toolTip = "How often a lock is tried when a transaction ends...default is 20"})),
    number(engine({.property = "P_Threads",
                   .value = "Threads",
                   .byDefault = dword(3),
                   .control = "txtThreads",
                   .buddy = "Threads",
                   .caption = "Threads",
                   .toolTip = "How many threads work for the engine...default is 3"})),
    number(engine({.property = "P_IdleFrequency",
                   .value = "IdleFrequency",
                   .byDefault = dword(10),
                   .control = "txtIdleFrequency",
                   .buddy = "IdleFrequency",
                   .caption = "IdleFrequency",
                   .toolTip = "How long the engine waits until it frees locks...default is 10"})),
    number(engine({.property = "P_ExclusiveAsyncDelay",
                   .value = "ExclusiveAsyncDelay",
                   .byDefault = dword(2000),
                   .control = "txtExclusiveAsyncDelay",
                   .buddy = "ExclusiveAsyncDelay",
                   .caption = "ExclusiveAsyncDelay",
                   .toolTip = "Milliseconds until changes of a database opened alone are "
                              "written...default is 2000"})),
    number(engine({.property = "P_LockedPageTimeout",
                   .value = "LockedPageTimeout",
                   .byDefault = dword(5),
                   .control = "txtLockedPageTimeout",
                   .buddy = "LockedPageTimeout",
                   .caption = "LockedPageTimeout",
                   .toolTip = "How long a page that was locked is kept...default is 5"})),
    number(engine(
        {.property = "P_SharedAsyncDelay",
         .value = "SharedAsyncDelay",
         .byDefault = dword(50),
         .control = "txtSharedAsyncDelay",
         .buddy = "SharedAsyncDelay",
         .caption = "SharedAsyncDelay",
         .toolTip =
             "Milliseconds until changes of a shared database are written...default is 50"})),
    number(engine({.property = "P_ReadAheadPages",
                   .value = "ReadAheadPages",
                   .byDefault = dword(16),
                   .control = "txtReadAheadPages",
                   .buddy = "ReadAheadPages",
                   .caption = "ReadAheadPages",
                   .toolTip = "How many pages are read at once...default is 16"})),
    number(engine(
        {.property = "P_FlushTransactionTimeout",
         .value = "FlushTransactionTimeout",
         .byDefault = dword(500),
         .control = "txtFlushTransactionTimeout",
         .buddy = "FlushTransactionTimeout",
         .caption = "FlushTransactionTimeout",
         .toolTip = "Milliseconds without changes until they are written...default is 500"})),
    number(engine(
        {.property = "P_PagesLockedToTableLock",
         .value = "PagesLockedToTableLock",
         .byDefault = dword(0),
         .control = "txtPagesLockedToTableLock",
         .buddy = "PagesLockedToTableLock",
         .caption = "PagesLockedToTableLock",
         .toolTip =
             "After how many locked pages the whole table is locked; 0 never...default is 0"})),
    number(engine({.property = "P_MaxLocksPerFile",
                   .value = "MaxLocksPerFile",
                   .byDefault = dword(9500),
                   .control = "txtMaxLocksPerFile",
                   .buddy = "MaxLocksPerFile",
                   .caption = "MaxLocksPerFile",
                   .toolTip = "How many locks a transaction may hold...default is 9500"})),
    number(engine({.property = "P_LockDelay",
                   .value = "LockDelay",
                   .byDefault = dword(100),
                   .control = "txtLockDelay",
                   .buddy = "LockDelay",
                   .caption = "LockDelay",
                   .toolTip = "Milliseconds between two tries for a lock...default is 100"})),
};

}  // namespace

static_assert(propertiesAreUnique(kEngine) && modesAreKnown(kEngine));

std::span<const Tweak> jetEngineRows() { return kEngine; }

}  // namespace korvex::engine
