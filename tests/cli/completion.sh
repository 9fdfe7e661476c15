#!/usr/bin/env bash
# The completions for zsh and fish: every option of the program is in them, and the installed shells
# offer it. documents.sh tests the completion for bash.
. "$(dirname "$0")/expect.sh"
zsh_file=$source/completion/_sdpline fish_file=$source/completion/sdpline.fish

mkdir new
expect "completion/generate.sh" 0 nothing nothing -- bash "$source/completion/generate.sh" "$program" new
expect "_sdpline is new: else run completion/generate.sh" 0 "$zsh_file" nothing -- cat new/_sdpline
expect "sdpline.fish is new: else run completion/generate.sh" 0 "$fish_file" nothing -- \
  cat new/sdpline.fish

"$program" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' | sort >subcommands.txt
[ "$(wc -l <subcommands.txt)" -ge 9 ] || { failures=$((failures + 1)); echo "not nine subcommands"; }
options() { "$program" "$1" --help | sed -n '/^Options:/,/^$/p' |
  grep -oE -- '^  .{0,3}--[a-z0-9-]+' | grep -oE -- '--.*' | sort; }

# The program accepts every word that is offered as a value.
sed -nE "s/.*seen_subcommand_from ([a-z-]+)'.* -l ([a-z0-9-]+) -x -a '([^']*)'.*/\1 \2 \3/p" \
  "$fish_file" >offers
expect "words are offered" 0 - nothing -- grep -q '^check format text json' offers
while read -r subcommand option words; do
  for word in $words; do
    "$program" "$subcommand" "--$option" "$word" good.sdp good.sdp >out 2>&1 </dev/null
    expect "$subcommand --$option $word" 1 nothing nothing -- grep -E -- "--$option: " out
  done
done <offers

if command -v fish >/dev/null; then
  export HOME=$work
  fished() { # LINE: what is offered for its last word, without descriptions
    fish --no-config -c "source '$fish_file'; complete -C '$1'" | cut -f 1 | sort
  }
  expect "fish: the subcommands" 0 subcommands.txt nothing -- fished "sdpline "
  while read -r subcommand; do
    options "$subcommand" >known
    expect "fish: the options of $subcommand" 0 known nothing -- fished "sdpline $subcommand --"
  done <subcommands.txt
  printf '%s\n' gcc json jsonl junit sarif text >known
  expect "fish: a format" 0 known nothing -- fished "sdpline check --format "
  expect "fish: files" 0 '~^good.sdp$' nothing -- fished "sdpline check goo"
  expect "fish: no files for explain" 0 nothing nothing -- fished "sdpline explain goo"
fi

if command -v zsh >/dev/null; then
  expect "zsh: the script" 0 nothing nothing -- zsh -n "$zsh_file"
  # zshed SUBCOMMAND: the options that are passed to zsh's _arguments.
  zshed() {
    zsh -fc '_arguments() {
        if [[ $1 == -C ]]; then state=rest words=($subcommand); else print -l -- "$@"; fi
      }
      subcommand=$2; . "$1"' _ "$zsh_file" "$1" |
      grep -oE -- '^([^[]*\))?\*?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+$' | sort
  }
  while read -r subcommand; do
    options "$subcommand" >known
    expect "zsh: the options of $subcommand" 0 known nothing -- zshed "$subcommand"
  done <subcommands.txt
  zsh -fc '_arguments() { state=subcommand; }; _describe() { print -l -- "${(@P)4}"; }; . "$1"' \
    _ "$zsh_file" | cut -d : -f 1 | sort >got
  expect "zsh: the subcommands" 0 subcommands.txt nothing -- cat got
fi
finish
