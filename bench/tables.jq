# The summary in docs/performance.md, or the page bench/results.md, as $part says.
def digits($count): pow(10; $count) as $power | . * $power | round / $power | tostring;
def figure: if . >= 100 then digits(0) elif . >= 10 then digits(1) else digits(2) end;
def time: if . == null then "" else figure end;
def yes_or_no: if . then "yes" else "**no**" end;
def row: "| " + join(" | ") + " |";

# One row for each group, in the order of the cases.
def summary:
  .cases | to_entries | group_by(.value.group) | sort_by(.[0].key)[] | map(.value)
  | [.[0].group, (map(.baseline) | unique | join("; ")),
     (map(.limit) | unique | map(figure) | join(", ")),
     (map(.measured) | (min | figure) + " to " + (max | figure)),
     "\(map(select(.met)) | length) of \(length)"]
  | row;

def conditions:
  "Measured on \(.date) with \(.compiler), \(.options), on \(.cpu) with \(.cores) cores,",
  "\(.system), files on \(.files), at a load average of \(.load | figure).",
  "";

if $part == "summary" then
  "",
  conditions,
  "| Group | Baselines | Limits | Measured | Met |",
  "|---|---|---|---|---|",
  summary,
  ""
else
  "# Results of scripts/bench",
  "",
  "`scripts/bench` writes this page. [Performance](../docs/performance.md) says how the figures are",
  "measured, and why a limit is not met.",
  "",
  conditions,
  "| What | Baseline | Limit | Measured | ns | Baseline ns | Met |",
  "|---|---|---|---|---|---|---|",
  (.cases[]
   | [.group + ": " + .case, .baseline, (.limit | figure), (.measured | figure),
      (.nanoseconds | time), (.baseline_nanoseconds | time), (.met | yes_or_no)]
   | row)
end
