# shellcheck shell=bash
# Completion of velora-ts for bash. The package bash-completion finds it in its folder, but it uses nothing of that
# package: "source" is enough.

# The command line, as it describes itself. Keys are a verb, or a verb and an option; "velora-ts" stands for none.
_velora_ts_verbs=()
declare -gA _velora_ts_options=()    # the options of a verb, by their long names
declare -gA _velora_ts_long=()       # the long name of an option
declare -gA _velora_ts_arguments=()  # the forms of the arguments of a verb
declare -gA _velora_ts_forms=()      # the form of the value of an option
declare -gA _velora_ts_excluded=()   # what cannot be given together with an option
declare -gA _velora_ts_repeated=()   # options that can be given more than once
declare -gA _velora_ts_open=()       # options that take several values, up to the next option
# {tables}

# Reads the line up to the cursor as the shell would, but executes nothing of it.
_velora_ts_read() {
  local line=${COMP_LINE:0:COMP_POINT} char name i=0 word='' is_word='' to=''
  while ((i < ${#line})); do
    char=${line:i:1}
    i=$((i + 1))
    if [[ $quote == "'" && $char != "'" ]]; then
      word+=$char
    elif [[ -n $quote && $char == "$quote" ]]; then
      quote='' kept=$word
    elif [[ $char == \\ ]]; then
      char=${line:i:1}
      i=$((i + 1))
      [[ -z $quote || $char == [\$\`\"\\] ]] || word+=\\
      word+=$char is_word=1
    elif [[ $char == \$ && ${line:i} =~ ^(\{([a-zA-Z_][a-zA-Z0-9_]*)\}|[a-zA-Z_][a-zA-Z0-9_]*) ]]; then
      name=${BASH_REMATCH[2]:-${BASH_REMATCH[0]}}
      word+=${!name-} is_word=1
      i=$((i + ${#BASH_REMATCH[0]}))
    elif [[ $char == [\$\`] ]]; then
      can_ask='' word+=$char is_word=1
    elif [[ -n $quote ]]; then
      word+=$char
    elif [[ $char == [\'\"] ]]; then
      quote=$char kept=$word is_word=1
    elif [[ $char == [[:space:]\<\>] ]]; then
      [[ $char == [\<\>] && $word =~ ^[0-9]*$ ]] && is_word=''
      [[ -z $is_word || -n $to ]] || words+=("$word")
      [[ -z $is_word ]] || to=''
      [[ $char != [\<\>] ]] || to=1
      word='' is_word='' kept=''
    elif [[ -z $word && $char == '~' && ${line:i:1} == / ]]; then
      word=$HOME is_word=1
    else
      word+=$char is_word=1
      [[ $COMP_WORDBREAKS != *"$char"* ]] || kept=$word
    fi
  done
  cur=$word is_redirected=$to
}

# Reads the verb's options and arguments before the cursor.
_velora_ts_parse() {
  local word options_end=''
  for word in "${words[@]:2}"; do
    if [[ -z $options_end && $word == -- ]]; then
      options_end=1 option=''
    elif [[ -z $options_end && $word == -[-a-zA-Z]* ]]; then
      option=${_velora_ts_long[$verb ${word%%=*}]-${word%%=*}}
      given[$option]=''
      [[ $word != *=* ]] || given[$option]=${word#*=}
      [[ $word != *=* && -n ${_velora_ts_forms[$verb $option]-} ]] || option=''
    elif [[ -n $option ]]; then
      given[$option]=$word
      [[ -n ${_velora_ts_open[$verb $option]-} ]] || option=''
    else
      given[${forms[arguments]-.}]=$word
      arguments=$((arguments + 1))
    fi
  done
}

# ask ARGUMENT...: what velora-ts says about the store of `config` and `with`; nothing if that takes longer than a
# second, as for a server that cannot be reached.
_velora_ts_ask() {
  local program=${words[0]}
  [[ -n $can_ask ]] && type -P timeout >/dev/null || return 0
  type -P "$program" >/dev/null || program=velora-ts
  timeout -k 1 1 "$program" "$@" ${config:+--config "$config"} ${with:+--with "$with"} </dev/null 2>/dev/null
}

# offer VALUE [DESCRIPTION]: if the value begins with what was typed.
_velora_ts_offer() {
  [[ $1 == "$cur"* ]] || return 0
  local rest=${1#"$kept"}
  case $quote in
    \') rest=${rest//\'/\'\\\'\'} ;;
    \")
      rest=${rest//\\/\\\\} rest=${rest//\"/\\\"} rest=${rest//\$/\\\$} rest=${rest//\`/\\\`}
      rest=${rest//!/\"\'!\'\"}
      ;;
    *)
      printf -v rest %q "$rest"
      rest=${rest//\\,/,}
      ;;
  esac
  # Readline closes the quote, unless the value ends with one.
  [[ -z $quote || $rest != *"$quote" ]] || rest+=$quote
  COMPREPLY+=("$rest")
  descriptions+=("${2-}")
}

# Shows descriptions in a list; a list is made if several values are left, and then nothing of them gets into the line.
_velora_ts_describe() {
  local i width=0
  [[ ${#COMPREPLY[@]} -gt 1 && ${COMP_TYPE-} == @(9|33|63|64) ]] || return 0
  for i in "${!COMPREPLY[@]}"; do
    ((${#COMPREPLY[i]} <= width)) || width=${#COMPREPLY[i]}
  done
  for i in "${!COMPREPLY[@]}"; do
    [[ -z ${descriptions[i]} ]] || printf -v "COMPREPLY[i]" "%-${width}s  %s" "${COMPREPLY[i]}" "${descriptions[i]}"
    COMPREPLY[i]=${COMPREPLY[i]:0:${COLUMNS:-80}-1}
  done
}

# A run has its activity, node and state as description. The table shows no character that steers a terminal.
_velora_ts_offer_runs() {
  local line fields limit=20
  [[ -z $cur ]] || limit=200
  compopt -o nosort
  _velora_ts_offer "$prefix"last
  while IFS= read -r line; do
    [[ $line =~ ^[0-9a-f]{8,}' ' ]] || continue
    IFS=$'\t' read -ra fields <<<"${line//  /$'\t'}"
    fields=("${fields[@]# }")
    _velora_ts_offer "$prefix${line%% *}" "${fields[6]-}, ${fields[7]-}, ${fields[4]-}"
  done < <(_velora_ts_ask runs --limit "$limit")
}

# is_unfit TEXT: whether a text in JSON has characters that would break the line or steer the terminal.
_velora_ts_is_unfit() {
  local LC_ALL=C unfit=$'\\\\u|\x7f|\xc2[\x80-\x9f]|\xe2\x80|\xe2\x81|\xef\xbb\xbf'
  [[ $1 =~ $unfit ]]
}

# offer_texts MEMBER END: the texts of a member in the lines of an answer in JSON, each with an end such as "=".
_velora_ts_offer_texts() {
  local line rest text
  local -A seen=()
  while IFS= read -r line; do
    rest=${line#*"\"$1\":"}
    [[ $rest != "$line" ]] || continue
    rest=${rest#[}
    while [[ $rest =~ ^\"(([^\"\\]|\\.)*)\",? ]]; do
      text=${BASH_REMATCH[1]}
      rest=${rest:${#BASH_REMATCH[0]}}
      [[ $line == *"\"$1\":["* ]] || rest=''
      if [[ -n ${seen[.$text]-} ]] || _velora_ts_is_unfit "$text"; then
        continue
      fi
      seen[.$text]=1
      text=${text//\\\"/\"}
      _velora_ts_offer "$prefix${text//\\\\/\\}$2"
    done
  done
}


# Offers values of a form, after `prefix`.
_velora_ts_offer_values() {
  local form=$1 choice config=${given[--config]-} with=${given[--with]-}
  # Here, --with names the store of RUN2.
  [[ $form == RUN2 || $verb != diff && ! -v given[--against] ]] || with=''
  if [[ $form == *,... ]]; then
    local list=${cur#"$prefix"}
    [[ $list != *,* ]] || prefix+=${list%,*},
    form=${form%,...}
    compopt -o nospace
  fi
  case $form in
    FOLDER) compopt -o dirnames ;;
    FILE | FILE...) compopt -o default ;;
    RUN | RUN2) _velora_ts_offer_runs ;;
    PARAMETER) _velora_ts_offer_texts name '' < <(_velora_ts_ask parameters last --json) ;;
    '[PARAMETER=]X') _velora_ts_offer_texts name = < <(_velora_ts_ask parameters last --json) ;;
    EVENT) _velora_ts_offer_texts events '' < <(_velora_ts_ask parameters last --json) ;;
    INSTRUMENT | ACTIVITY | NODE)
      _velora_ts_offer_texts "${form,,}" '' < <(_velora_ts_ask runs --limit 200 --json)
      ;;
    TIME) for choice in today yesterday; do _velora_ts_offer "$prefix$choice"; done ;;
    VERB) for choice in "${_velora_ts_verbs[@]}"; do _velora_ts_offer "$prefix$choice"; done ;;
    *'|'*) for choice in ${form//|/ }; do _velora_ts_offer "$prefix$choice"; done ;;
  esac
}

# is_excluded NAME: whether something was given that excludes an option or an argument.
_velora_ts_is_excluded() {
  local one
  for one in "${!given[@]}"; do
    [[ " ${_velora_ts_excluded[$verb $one]-} " != *" $1 "* ]] || return 0
  done
  return 1
}

_velora_ts_offer_options() {
  local one
  for one in ${_velora_ts_options[$verb]-}; do
    [[ -v given[$one] && -z ${_velora_ts_repeated[$verb $one]-} ]] || _velora_ts_is_excluded "$one" ||
      _velora_ts_offer "$one"
  done
}

_velora_ts() {
  local words=() cur='' kept='' quote='' can_ask=1 is_redirected='' prefix='' descriptions=()
  local verb=velora-ts option='' arguments=0 forms form
  local -A given=()
  COMPREPLY=()
  _velora_ts_read
  verb=${words[1]-velora-ts}
  read -ra forms <<<"${_velora_ts_arguments[$verb]-}"
  _velora_ts_parse
  form=${forms[arguments]-}
  if [[ -n $is_redirected ]]; then
    compopt -o default
  elif [[ ${#words[@]} -eq 1 && $cur != -* ]]; then
    _velora_ts_offer_values VERB
    _velora_ts_offer help
  elif [[ $cur == --*=* ]]; then
    prefix=${cur%%=*}=
    _velora_ts_offer_values "${_velora_ts_forms[$verb ${cur%%=*}]-}"
  elif [[ -n $option && ! (-n ${_velora_ts_open[$verb $option]-} && $cur == -*) ]]; then
    _velora_ts_offer_values "${_velora_ts_forms[$verb $option]}"
  elif [[ $cur == -* || -z $form ]] || _velora_ts_is_excluded "$form"; then
    _velora_ts_offer_options
  else
    _velora_ts_offer_values "$form"
  fi
  _velora_ts_describe
}

complete -F _velora_ts velora-ts
