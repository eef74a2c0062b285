/// The move of an item from one store to another, which no crash can turn into a loss or a double.
///
/// Two files cannot commit at once, so the move is a row of four commits that a journal in both files ties together:
///   1. target: the item's copy, in no folder, and a row of `transfers_in` with a random transfer number;
///   2. source: the item is deleted and the transfer number noted in `transfers_out`;
///   3. target: the copy gets its folder and an arrival number, the row of `transfers_in` goes;
///   4. source: the row of `transfers_out` goes.
/// Until commit 2 the item is in the source, from then on in the target. A copy that was left behind is settled by
/// asking the source: a number that is noted there was moved and the copy is shown, any other copy is dropped.
///
/// A mover holds a lock, which the machine frees when the process dies, on its own byte of the file
/// "<target>-transfers" from before commit 1 until after commit 3. Only a copy whose byte is free is settled, so nobody
/// touches the move of a process that lives.
#pragma once

#include "desk/store/store.h"

namespace desk {

/// Moves an item into a folder of another store. It gets a new entry identifier there; everything else it has goes
/// along. Fails with `itemGone` as `Store::move` does, `notFound` when the folder does not exist; the item is in the
/// source then. A failure after the source gave the item up says that it will appear when the stores are next settled.
ItemRecord moveBetween(Store &source, const ItemRecord &item, Store &target, FolderId folder);

/// Copies an item into a folder of another store.
ItemRecord copyBetween(Store &source, ItemId id, Store &target, FolderId folder);

/// Ends the moves between two stores, in both directions, whose movers died. To be called when both have been opened;
/// at any other time it does no harm. Gives the number of moves settled.
int settleTransfers(Store &one, Store &other);

} // namespace desk
