# From headers, a page with a section for each class: what its public part declares, in tables.

function squeeze(text) {
  gsub(/[ \t]+/, " ", text)
  sub(/^ /, "", text)
  sub(/ $/, "", text)
  return text
}

function cell(text) {
  gsub(/@throws/, "Throws", text)
  gsub(/\|/, "\\|", text)
  return squeeze(text)
}

function code(text) { return "`" squeeze(text) "`" }

# The text of a comment so far; it is used up.
function takeDoc(  text) {
  text = squeeze(doc)
  doc = ""
  return text
}

# What follows "///<", which is taken off `line`.
function takeNote(  at, note) {
  at = index(line, "///<")
  if (at == 0) return ""
  note = squeeze(substr(line, at + 4))
  line = substr(line, 1, at - 1)
  return note
}

function flushRow() {
  if (row_operations != "") {
    operations = operations "| " row_operations " | " cell(row_doc) " |\n"
  }
  row_operations = row_doc = row_names = row_kinds = ""
}

# What an accessor without a comment stands for: the constants and members that its body names.
function meaning(body,  text, word, result, seen_words) {
  text = body
  while (match(text, /[A-Za-z_][A-Za-z0-9_]*/)) {
    word = substr(text, RSTART, RLENGTH)
    text = substr(text, RSTART + RLENGTH)
    if (index(seen_words, " " word " ")) continue
    seen_words = seen_words " " word " "
    if (word in constant_note) {
      result = result (result == "" ? "" : ", ") code(word)
      if (constant_note[word] != "") result = result " (" constant_note[word] ")"
    } else if (word ~ /^[a-z][a-z]_[a-z0-9_]+$/) {
      result = result (result == "" ? "" : ", ") code(word)
    }
  }
  return result
}

function finishClass() {
  flushRow()
  if (class == "") return
  sections = sections "## " class "\n\n" about "\n\n"
  sections = sections "[Header](../" FILENAME_OF[class] ")" \
    (class ~ /^[A-Z][A-Z]BLOCK$/ ? ", [layout](layouts.md#" tolower(class) ")," \
      " [what reading gives back](reading.md#what-reading-gives-back)" : "") ".\n"
  if (operations != "") sections = sections "\n| Operations | |\n|---|---|\n" operations
  if (constants != "") sections = sections "\n| Constants and types | |\n|---|---|\n" constants
  if (fields != "") sections = sections "\n| Members | Type | |\n|---|---|---|\n" fields
  sections = sections "\n"
  first = about
  sub(/\. .*/, ".", first)
  sub(/\.$/, "", first)
  sub(/`mdf_v4_10::/, "`", first)
  overview = overview "| [`" class "`](#" tolower(class) ") | " first " |\n"
  class = ""
}

# A whole declaration of the public part.
function declaration(text, note, is_new_paragraph,  at, head, name, kind, comment, parts, n, i, value, list) {
  comment = takeDoc()
  if (text ~ /^(using|template|friend|~)/) return
  if (text ~ /^(enum|struct) /) {
    flushRow()
    head = text
    sub(/ *[:{].*/, "", head)
    constants = constants "| " code(head) " | " cell(comment (comment != "" && listed != "" ? " " : "") listed) " |\n"
    return
  }
  if (text ~ /^static constexpr/) {
    flushRow()
    sub(/^static constexpr /, "", text)
    sub(/;$/, "", text)
    constants = constants "| " code(text) " | " cell(comment note) " |\n"
    return
  }
  at = index(text, "(")
  if (at == 0 || text ~ /^[^(]*(=|\{)/) {
    flushRow()
    sub(/ *(=.*)?(\{\})?;.*$/, "", text)
    n = split(text, parts, " ")
    name = parts[n]
    sub(/ [^ ]*$/, "", text)
    if (sub(/^detail::Array</, "", text)) {
      sub(/, /, "[", text)
      sub(/>$/, "]", text)
    }
    fields = fields "| " code(name) " | " code(text) " | " cell(comment note) " |\n"
    return
  }
  # An operation: the declaration ends with the parentheses and what qualifies it.
  value = text
  head = substr(text, 1, at - 1)
  n = split(head, parts, " ")
  name = parts[n]
  kind = name
  if (match(name, /^[a-z]+/)) kind = substr(name, 1, RLENGTH)
  n = 0
  for (i = at; i <= length(text); i++) {
    if (substr(text, i, 1) == "(") n++
    if (substr(text, i, 1) == ")" && --n == 0) break
  }
  head = substr(text, 1, i)
  if (substr(text, i + 1) ~ /^ const/) head = head " const"
  if (is_new_paragraph || comment != "" || index(row_kinds, " " kind " ") || row_operations == "") flushRow()
  row_kinds = row_kinds " " kind " "
  row_operations = row_operations (row_operations == "" ? "" : "<br>") code(head)
  if (comment == "" && row_doc == "") {
    comment = meaning(substr(value, i + 1))
  }
  if (row_doc == "") row_doc = comment
}

FNR == 1 { finishClass(); doc = ""; public = 0 }

/^class MDF_EXPORT/ {
  finishClass()
  class = $3
  FILENAME_OF[class] = FILENAME
  about = takeAbout()
  operations = constants = fields = doc = ""
  split("", constant_note)
  public = 0
  open = ""
  next
}
/^\/\/\/ / || /^\/\/\/$/ {
  text = substr($0, 5)
  if (text == "" || text ~ /^\|/) { about_ended = 1; next }
  if (!about_ended) class_doc = class_doc " " text
  next
}
class == "" { class_doc = ""; about_ended = 0; next }
/^ public:/ { public = 1; next }
/^ (private|protected):/ { public = 0; next }
/^};/ { finishClass(); public = 0; next }
!public { next }

/^ *$/ { if (open == "") { paragraph = 1; doc = "" } next }
/^  \/\/\/ / && open == "" { doc = doc " " substr($0, 7); next }
{
  line = $0
  note = takeNote()
  if (open == "") { listed = "" }
  is_list = (open == "" ? line : open) ~ /^ *(enum|struct) /
  # The entries of an enumeration or structure, each with its note.
  if (is_list && open != "" && line !~ /^ *\}/) {
    entry = squeeze(line)
    sub(/[,;]$/, "", entry)
    word = entry
    sub(/ =.*/, "", word)
    n = split(word, words, " ")
    constant_note[words[n]] = note
    listed = listed (listed == "" ? "" : ", ") code(entry) (note == "" ? "" : " (" note ")")
  }
  open = open " " line
  whole = open
  opening = gsub(/[({]/, "&", whole)
  closing = gsub(/[)}]/, "&", whole)
  if (opening == closing && squeeze(open) ~ /[;}]$/) {
    declaration(squeeze(open), note, paragraph)
    open = ""
    paragraph = 0
  }
}

function takeAbout(  text) {
  text = squeeze(class_doc)
  class_doc = ""
  about_ended = 0
  return text
}

END {
  finishClass()
  print "# Classes\n"
  print "Everything that the header `mdf_v4_10.h` declares, made from the library's headers by"
  print "`tests/build/reference_doc --update`. Every block class is constructed in memory, or from a stream"
  print "that stands at a block; `os << block` writes the block, and `block.print(os)` dumps it. Failures are in"
  print "the stream's state. `scripts/docs` makes HTML pages with more on each class in `build/docs/html`.\n"
  print "| Class | What it is |\n|---|---|"
  printf "%s\n", overview
  printf "%s", sections
}
