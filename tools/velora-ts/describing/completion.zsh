#compdef velora-ts
# Completion of velora-ts for zsh.

# The verbs, and for _arguments the specifications of the options of each, as the command line describes itself; open
# options take several values, up to the next option.
# {verbs}

# folder WORD: the folder that a word of the line names, in REPLY. Variables and ~ are expanded as the shell does, but
# nothing is executed: a word with a command has none.
_velora_ts_folder() {
  local rest=$1 name
  REPLY=''
  [[ $rest != *[\`]* && $rest != *'$('* ]] || return 1
  [[ $rest != '~/'* ]] || rest=$HOME${rest#\~}
  while [[ $rest =~ '\$(\{?)([a-zA-Z_][a-zA-Z0-9_]*)\}?' ]]; do
    name=$match[2]
    REPLY+=${rest[1,MBEGIN-1]}${(qP)name}
    rest=${rest[MEND+1,-1]}
  done
  REPLY+=$rest
  REPLY=${(Q)REPLY}
}

# ask ARGUMENT...: what velora-ts says about the store of --config and --with, which names that of RUN2 if `second` is
# set; nothing if that takes longer than a second, as for a server that cannot be reached.
_velora_ts_ask() {
  setopt local_options extended_glob
  local REPLY tool option word
  local -a store
  _velora_ts_folder $program && tool=$REPLY && whence -p -- $tool >/dev/null || tool=velora-ts
  for option in --config --with; do
    [[ $option == --config || -n $second || $words[1] != diff && -z ${opt_args[--against]-} ]] || continue
    word=${opt_args[$option]//(#b)\\([\\:])/$match[1]}  # as _arguments escapes it
    _velora_ts_folder "$word" || return
    store+=(${REPLY:+$option} $REPLY)
  done
  whence -p timeout >/dev/null || return
  timeout -k 1 1 $tool "$@" $store </dev/null 2>/dev/null
}

# runs [SECOND]: the newest runs, with activity, node and state. The table shows no character that steers a terminal.
_velora_ts_runs() {
  local line limit=20 second=$1
  local -a runs=('last:the run recorded last') fields
  [[ -z $PREFIX ]] || limit=200
  for line in ${(f)"$(_velora_ts_ask runs --limit $limit)"}; do
    [[ $line =~ '^[0-9a-f]{8,} ' ]] || continue
    fields=(${${(s:  :)line}# })
    runs+=("$fields[1]:$fields[7], $fields[8], $fields[5]")
  done
  _describe -V run runs
}

# is_unfit TEXT: whether a text in JSON has characters that would break the line or steer the terminal.
_velora_ts_is_unfit() {
  setopt local_options no_multibyte
  local unfit=$'*(\\\\u|\x7f|\xc2[\x80-\x9f]|\xe2\x80|\xe2\x81|\xef\xbb\xbf)*'
  [[ $1 == ${~unfit} ]]
}

# texts MEMBER OPTION...: the texts of a member in the lines of JSON that are read, with options for compadd.
_velora_ts_texts() {
  local line rest text expl
  local -aU texts
  while IFS= read -r line; do
    rest=${line#*\"$1\":}
    [[ $rest != $line ]] || continue
    while [[ $rest =~ '^\[?"(([^"\\]|\\.)*)"(,"?)?' ]]; do
      text=$match[1]
      rest=${match[3]#,}${rest[MEND+1,-1]}
      [[ $line == *\"$1\":\[* ]] || rest=''
      _velora_ts_is_unfit $text || texts+=("${${text//\\\"/\"}//\\\\/\\}")
    done
  done
  _wanted values expl $1 compadd "${@:2}" -a texts
}

_velora_ts_parameters() { _velora_ts_texts $1 < <(_velora_ts_ask parameters last --json) }

_velora_ts_of_runs() { _velora_ts_texts $1 < <(_velora_ts_ask runs --limit 200 --json) }

# listed MEMBER END: one more name of a list, with an end such as "=".
_velora_ts_listed() {
  compset -P '*,'
  _velora_ts_texts $1 -S "$2" < <(_velora_ts_ask parameters last --json)
}

_velora_ts() {
  local program=$words[1] second word option context state state_descr line
  local -A opt_args
  local -a specifications open
  if ((CURRENT == 2)); then
    _velora_ts_specify velora-ts
    _arguments -S : $specifications '1: :_velora_ts_verbs'
  else
    _velora_ts_specify $words[2]
    for word in $words[3,CURRENT-1]; do
      [[ $word != -[-a-zA-Z]* ]] || option=$word
    done
    if [[ -n $option && $PREFIX != -* ]] && ((${open[(Ie)$option]})); then
      _files
      return
    fi
    shift words
    ((CURRENT--))
    _arguments -S : $specifications
  fi
}

_velora_ts "$@"
