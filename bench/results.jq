# From the benchmark programs' own results: what was measured where, and each case's figures.
{
  compiler: $compiler,
  options: $options,
  cpu: $cpu,
  cores: .[0].context.num_cpus,
  system: $system,
  files: $files,
  date: $date,
  load: [.[].context.load_avg[0]] | max,
  cases: [
    .[].benchmarks[]
    | (.name | split("/")) as $name
    | {
        group: $name[0],
        case: $name[1],
        baseline: .label,
        limit,
        measured,
        nanoseconds,
        baseline_nanoseconds: (if .nanoseconds then .baseline else null end),
        met: (.measured <= .limit)
      }
  ]
}
