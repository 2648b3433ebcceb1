#ifndef MDF_TESTS_READING_ORACLE_VARIABLE_PARTS_H_
#define MDF_TESTS_READING_ORACLE_VARIABLE_PARTS_H_

#include <string>

#include "reading_oracle/attempt.h"

/// What the classes make of their links and of the rest of their body, once links and fixed fields
/// are taken. The counts in the fixed fields become those that the writer states.
namespace mdf_tests::oracle {

/// CH: elements from the links.
void takeElements(Attempt& attempt, const std::string& rest);

/// AT: the embedded bytes.
void takeEmbedded(Attempt& attempt, const std::string& rest);

/// EV: both lists from the links.
void takeScopesAndAttachments(Attempt& attempt, const std::string& rest);

/// CN: the list and the default X axis from the links.
void takeAttachmentsAndXAxis(Attempt& attempt, const std::string& rest);

/// CC: the references from the links, and the values.
void takeReferencesAndValues(Attempt& attempt, const std::string& rest);

/// DL: the links, and the equal length or the offsets.
void takePairs(Attempt& attempt, const std::string& rest);

}  // namespace mdf_tests::oracle

#endif  // MDF_TESTS_READING_ORACLE_VARIABLE_PARTS_H_
