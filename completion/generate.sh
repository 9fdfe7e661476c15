#!/usr/bin/env bash
# Writes the completions for zsh and fish from the help of the program:
#
#     completion/generate.sh build/debug/cli/sdpline completion
#
# A test fails where the files in this folder differ from what the script writes.
set -euo pipefail
program=$1 folder=$2

# Print "name|description" for each subcommand, and "short|long|type|description" for each option.
subcommands() {
  "$program" --help | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z-]+) +(.*)$/\1|\2/p'
}
options() { # [SUBCOMMAND]
  "$program" "$@" --help | sed -n '/^Options:/,/^$/p' |
    sed -nE 's/^  (-([a-zA-Z]),)?--([a-z0-9-]+) ?([A-Z][A-Z,.]*( \.\.\.)?)? +(.*)$/\2|\3|\4|\6/p'
}
positional() { "$program" "$1" --help | sed -nE '/^Positionals:/,/^$/s/^  ([A-Z]+) .*/\1/p' | head -1; }

# The words for a type of value; "files", or nothing for numbers and names.
words_of() {
  case $1 in
  FORMAT*) echo text json jsonl gcc junit sarif ;;
  WHEN*) echo auto always never ;;
  END*) echo crlf lf cr ;;
  STYLE*) echo 0 1 2 ;;
  ORDER*) echo theirs ours ;;
  LOCAL* | BODY* | LIST* | FILE* | FOLDER* | OFFER* | A | BODIES*) echo files ;;
  N | NUMBER* | TEXT* | BYTES* | NAME* | CODE* | METHOD* | ID* | URI* | "") ;;
  *)
    echo "$0: the words for values of type $1 are not known" >&2
    return 1
    ;;
  esac
}

quoted() { printf "'%s'" "${1//\'/$2}"; } # TEXT ESCAPED-QUOTE

# ---- zsh
zsh_quoted() { quoted "$1" "'\\''"; }

zsh_option() { # SHORT LONG TYPE DESCRIPTION
  local short=$1 long=$2 type=$3 text=${4//\[/\\[} words action=
  text=${text//\]/\\]}
  if [ -n "$type" ]; then
    words=$(words_of "$type")
    case $words in
    files) action=":${type%%[, ]*}:_files" ;;
    "") action=":${type%%[, ]*}: " ;;
    *) action=":${type%%[, ]*}:($words)" ;;
    esac
    [[ $type != *...* ]] || printf '%s' "'*'"
    printf '%s' "--$long="
  elif [ -n "$short" ]; then
    printf '%s' "'(-$short --$long)'{-$short,--$long}"
  else
    printf '%s' "--$long"
  fi
  zsh_quoted "[$text]$action"
}

zsh_arguments() { # INDENT [SUBCOMMAND]
  local indent=$1 short long type text
  shift
  while IFS='|' read -r short long type text; do
    printf ' \\\n%s%s' "$indent" "$(zsh_option "$short" "$long" "$type" "$text")"
  done < <(options "$@")
}

zsh_script() {
  local name text place
  printf '#compdef sdpline\n# Written by completion/generate.sh from the help of the program.\n'
  printf '_sdpline() {\n  local context state line\n  local -A opt_args\n  local -a subcommands=(\n'
  while IFS='|' read -r name text; do
    printf '    %s\n' "$(zsh_quoted "$name:$text")"
  done < <(subcommands)
  printf '  )\n  _arguments -C%s' "$(zsh_arguments '    ')"
  printf " \\\\\n    '1: :->subcommand' \\\\\n    '*:: :->rest'\n"
  printf '  case $state in\n  subcommand) _describe -t subcommands subcommand subcommands ;;\n'
  printf '  rest)\n    case $words[1] in\n'
  while IFS='|' read -r name text; do
    printf '    %s)\n      _arguments%s' "$name" "$(zsh_arguments '        ' "$name")"
    place=$(positional "$name")
    [ -z "$place" ] || [ "$(words_of "$place")" != files ] || printf " \\\\\n        '*:file:_files'"
    printf '\n      ;;\n'
  done < <(subcommands)
  printf '    esac\n    ;;\n  esac\n}\n_sdpline "$@"\n'
}

# ---- fish
fish_quoted() { quoted "$1" "\\'"; }

fish_options() { # CONDITION [SUBCOMMAND]
  local condition=$1 short long type text words
  shift
  while IFS='|' read -r short long type text; do
    printf 'complete -c sdpline -n %s%s -l %s' "$(fish_quoted "$condition")" "${short:+ -s $short}" "$long"
    if [ -n "$type" ]; then
      words=$(words_of "$type")
      case $words in
      files) printf ' -r -F' ;;
      "") printf ' -x' ;;
      *) printf ' -x -a %s' "$(fish_quoted "$words")" ;;
      esac
    fi
    printf ' -d %s\n' "$(fish_quoted "$text")"
  done < <(options "$@")
}

fish_script() {
  local name text place condition
  printf '# Written by completion/generate.sh from the help of the program.\n'
  printf 'complete -c sdpline -f\n'
  fish_options __fish_use_subcommand
  while IFS='|' read -r name text; do
    printf 'complete -c sdpline -n __fish_use_subcommand -a %s -d %s\n' "$name" "$(fish_quoted "$text")"
    condition="__fish_seen_subcommand_from $name"
    fish_options "$condition" "$name"
    place=$(positional "$name")
    [ -z "$place" ] || [ "$(words_of "$place")" != files ] ||
      printf 'complete -c sdpline -n %s -F\n' "$(fish_quoted "$condition")"
  done < <(subcommands)
}

zsh_script >"$folder/_sdpline"
fish_script >"$folder/sdpline.fish"
