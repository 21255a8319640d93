// Relationships from their description (FORMAT.md, "Relationships").
#pragma once

#include "jet/catalogue.h"

namespace jet {

/// Makes the relationship with all that belongs to it: its rows in the catalogue and, where it is enforced, a logical
/// index in each table and a filled index on the referencing columns. Requires a transaction; undoes itself when it
/// throws: InvalidArgument, NoSuchObject, ObjectExists, ReadOnly, MissingParent or DuplicateKey for rows that do not
/// comply.
void makeRelationship(Catalogue& catalogue, const Relationship& relationship);

} // namespace jet
