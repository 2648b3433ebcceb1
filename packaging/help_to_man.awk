# Makes a man page of what a command prints for --help. Variables: the name of the page, the
# program's version, and the names of other pages to see, with spaces between.

function escaped(text) {
  gsub(/\\/, "\\e", text)
  gsub(/-/, "\\-", text)
  return text ~ /^[.']/ ? "\\&" text : text
}

# Text is kept back by section: a man page has the sections in another order than the help.
function add(section, line) { body[section] = body[section] line "\n" }

# What is listed: names in bold, what they take in italics, then the text about them.
function addItem(section, item,    split_at, head, names, i, count) {
  split_at = match(item, /  +/)
  head = split_at ? substr(item, 1, split_at - 1) : item
  sub(/ REQUIRED$/, "", head)
  add(section, ".TP")
  i = index(head, " ")
  count = split(i ? substr(head, 1, i - 1) : head, names, ",")
  text = ""
  while (count > 0) {
    text = "\\fB" escaped(names[count]) "\\fP" (text == "" ? "" : ", ") text
    --count
  }
  add(section, text (i ? " \\fI" escaped(substr(head, i + 1)) "\\fP" : ""))
  if (split_at) {
    add(section, escaped(substr(item, split_at + RLENGTH)))
  }
}

# Indented lines stay as they are, others are a paragraph's.
function addText(section, line) {
  if (line ~ /^ / && !verbatim) {
    add(section, ".PP\n.RS 4\n.nf")
    verbatim = 1
  } else if (line !~ /^ / && verbatim) {
    endVerbatim(section)
  }
  if (line == "") {
    add(section, ".PP")
  } else {
    sub(verbatim ? "^  " : "^", "", line)
    add(section, escaped(line))
  }
}

function endVerbatim(section) {
  if (verbatim) {
    add(section, ".fi\n.RE\n.PP")
    verbatim = 0
  }
}

function enter(section) {
  endVerbatim(current)
  current = section
}

BEGIN { current = "DESCRIPTION" }

NR == 1 {
  summary = $0
  add("DESCRIPTION", escaped(summary))
  next
}
/^Usage: / {
  add("SYNOPSIS", escaped(substr($0, 8)))
  next
}
/^Positionals:$/ { listed = "ARGUMENTS"; next }
/^Options:$/ { listed = "OPTIONS"; next }
/^Subcommands:$/ { listed = "COMMANDS"; next }
listed != "" && /^  / {
  if (/^   +[^ ]/) {
    sub(/^ +/, "")
    add(listed, escaped($0))
  } else {
    addItem(listed, substr($0, 3))
  }
  next
}
listed != "" { listed = "" }
/^Examples?:$/ { enter("EXAMPLES"); next }
/^[A-Z][a-z ]*:$/ {
  endVerbatim(current)
  sub(/:$/, "")
  add(current, ".SS " escaped($0))
  next
}
/^Exit code: / {
  enter("EXIT STATUS")
  sub(/^Exit code: /, "")
}
{ addText(current, $0) }

END {
  endVerbatim(current)
  name = tolower(substr(summary, 1, 1)) substr(summary, 2)
  sub(/\.$/, "", name)
  printf ".TH %s 1 \"\" \"mdf %s\" \"User Commands\"\n", toupper(page), version
  printf ".SH NAME\n%s \\- %s\n", escaped(page), escaped(name)
  count = split("SYNOPSIS,DESCRIPTION,ARGUMENTS,OPTIONS,COMMANDS,EXAMPLES,EXIT STATUS", order, ",")
  for (i = 1; i <= count; ++i) {
    if (body[order[i]] != "") {
      text = body[order[i]]
      gsub(/(\.PP\n)+\.PP\n/, ".PP\n", text)
      sub(/^(\.PP\n)+/, "", text)
      sub(/(\.PP\n)+$/, "", text)
      printf ".SH %s\n%s", order[i], text
    }
  }
  count = split(see_also, others, " ")
  for (i = 1; i <= count; ++i) {
    printf "%s.BR %s (1)%s\n", i == 1 ? ".SH SEE ALSO\n.nh\n.ad l\n" : "", escaped(others[i]), i < count ? "," : ""
  }
}
