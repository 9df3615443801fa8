# What bash completes of a command line of ambrelio.

# The options of a subcommand, those of every command excepted.
_ambrelio_options() {
  local answer='--app --vardex3 --json --csv'
  case $1 in
    create) echo --app --vardex3 --masters ;;
    journal) echo --app --vardex3 --keep-going ;;
    call) echo "$answer" ;;
    sql) echo "$answer" --password --plan ;;
    check) echo --password --json --csv ;;
    convert) echo --password ;;
    deposito) echo "$answer" --historia --formula --por ;;
    vaciado | descarga) echo "$answer" --por ;;
    tolva) echo "$answer" --historia --por ;;
    historia) echo "$answer" --desde --hasta --tolva --deposito ;;
    referentes) echo "$answer" --por-nombre ;;
    password) echo "$answer" --encode --check --show ;;
    sensors) echo "$answer" --seconds ;;
    gateway) echo --port --host --script --requests --json ;;
  esac
}

# The words that may stand where a subcommand expects one that is no option.
_ambrelio_words() {
  case $1 in
    historia) echo descargas niveles vaciados destinos ;;
    referentes) echo clientes transportistas ;;
  esac
}

_ambrelio_classes() {
  case $1 in
    deposito | vaciado) echo socio producto municipio paraje molino ;;
    tolva | descarga) echo socio producto municipio paraje ;;
  esac
}

# The paths that start with the word: of folders with -d, of files and folders with -f.
_ambrelio_paths() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}

_ambrelio() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local commands='create journal call sql check convert sensors gateway deposito vaciado tolva descarga historia
                  referentes password'
  local command='' given=0 i
  COMPREPLY=()

  # The subcommand, and how many words behind it are neither options nor their values.
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      --trace | --app | --masters | --script | --password | --check | --por) ((i++)) ;;
      --desde | --hasta | --tolva | --deposito) ((i++)) ;;
      --port | --host | --requests | --seconds) ((i++)) ;;
      -?*) ;;
      *) if [[ $command ]]; then ((given++)); else command=${COMP_WORDS[i]}; fi ;;
    esac
  done

  case $before in
    --app | --masters) _ambrelio_paths -d "$word"; return ;;
    --trace | --script) _ambrelio_paths -f "$word"; return ;;
    --por) mapfile -t COMPREPLY < <(compgen -W "$(_ambrelio_classes "$command")" -- "$word"); return ;;
    --password | --encode | --check | --desde | --hasta | --tolva | --deposito) return ;;
    --port | --host | --requests | --seconds) return ;;
  esac

  local words=''
  if [[ $word == -* ]]; then
    words="--help --trace $(_ambrelio_options "$command")"
    [[ $command ]] || words+=' --version'
  elif [[ ! $command ]]; then
    words=$commands
  elif [[ $command == convert ]] && ((given < 2)); then
    _ambrelio_paths -f "$word"
    return
  elif ((given == 0)); then
    case $command in journal | sql | check) _ambrelio_paths -f "$word"; return ;; esac
    words=$(_ambrelio_words "$command")
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _ambrelio ambrelio
