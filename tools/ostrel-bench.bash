# Completion of ostrel-bench for bash. Commands and options are those of the help that the program prints.

_ostrel_bench() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= position=0 at words=
  for ((at = 1; at < COMP_CWORD; at++)); do
    case ${COMP_WORDS[at]} in
      -*) ;;
      *)
        case ${COMP_WORDS[at-1]} in
          --config | --can | --channel | --for | --delay | --device | --db | --variant | --module | --log | --listen | \
            --network | --node | --sequence) ;;
          *) if [ -z "$command" ]; then command=${COMP_WORDS[at]}; else position=$((position + 1)); fi ;;
        esac
        ;;
    esac
  done

  COMPREPLY=()
  case $before in
    --variant) words='halvard tesmond' ;;
    --can) words='1=virtual 1=socketcan: 1=socketcand: 1=replay:' compopt -o nospace ;;
    --config | --db | --module | --log | --sequence | --device) _ostrel_bench_files "$before" && return ;;
    --channel | --for | --delay | --listen | --network | --node) return ;;
  esac
  if [ -z "$words" ]; then
    case $command:$position:$word in
      :*:-*) words=$("$1" --help 2>/dev/null | grep -oE '^  (-h, )?--[a-z-]+' | grep -oE '\--[a-z-]+') ;;
      :*) words=$("$1" --help 2>/dev/null | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p') ;;
      *:*:-*) words="$("$1" "$command" --help 2>/dev/null | grep -oE '^  --[a-z-]+') --help" ;;
      nmt:0:*) words='operational preoperational stop reset' ;;
      nmt:1:*) words='all' ;;
      config:0:*) words='init check show' ;;
      *) _ostrel_bench_files "$command" && return ;;
    esac
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

# Folders, and files of the kind that belongs there.
_ostrel_bench_files() {
  local kind
  case $1 in
    --config | config) kind='*.json' ;;
    --db) kind='*.[dD][bB][cC]' ;;
    --sequence | play) kind='*.seq' ;;
    describe) kind='*.[eEdD][dDcC][sSfF]' ;;
    --module) kind='*.hpi' ;;
    --log | shell) kind='*' ;;
    *) return 1 ;;
  esac
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X "!$kind" -- "$word")
  mapfile -t COMPREPLY < <(printf '%s\n' "${COMPREPLY[@]}" | sort -u | sed '/^$/d')
}

complete -F _ostrel_bench ostrel-bench
