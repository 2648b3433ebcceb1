#ifndef MDF_TESTS_READING_ORACLE_READING_FORMS_H_
#define MDF_TESTS_READING_ORACLE_READING_FORMS_H_

#include "reading_oracle/attempt.h"

/// The ways in which the classes read. Every block is read at the start of its stream.
namespace mdf_tests::oracle {

/// A fixed number of bytes without header and links.
void readIdentification(Attempt& attempt);

/// A fixed number of bytes; a stream with fewer becomes exactly bad.
void readFixedShortIsBad(Attempt& attempt);

/// A fixed number of bytes; a stream with fewer keeps its own state.
void readFixedShortIsLeft(Attempt& attempt);

/// The identifier with the reserved bytes, and the length; the link count is taken for text.
void readText(Attempt& attempt);

/// The header, and all that follows as data.
void readPlainData(Attempt& attempt);

/// The header, and a body as long as the low 32 bits of the length say.
void readVariableLow32(Attempt& attempt);

/// The header, and a body as long as the length says.
void readVariableAll64(Attempt& attempt);

/// The same without links, and as the data what follows the block.
void readZipped(Attempt& attempt);

}  // namespace mdf_tests::oracle

#endif  // MDF_TESTS_READING_ORACLE_READING_FORMS_H_
