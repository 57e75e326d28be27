# Completion of qorv for bash.
_qorv() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]} options values=
  if [ "$COMP_CWORD" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W "compare convert headers keyframes md5 resize --help --version" -- "$word")
    return
  fi
  case $previous in
    --to) values="png jpeg ppm pgm"; [ "$command" = resize ] || values+=" y4m" ;;
    --range) values="full limited" ;;
    --codec) values="h264 hevc" ;;
    --pix) values="yuv420p yuv422p yuv444p yuv411p yuv440p yuva444p yuvj420p yuvj422p yuvj444p yuv420p10le yuv422p10le
      yuv444p10le gray gray10le" ;;
    --format)
      values="rgb888 rgba8888 rgb565"
      if [ "$command" = resize ]; then values+=" gray"; else values+=" bgra8888 argb8888 r8g8b8 r10g10b10"; fi ;;
  esac
  options="--help --quiet --json"
  case $command in
    compare | md5) options+=" --raw --pix --threads" ;;
    convert) options+=" --to --format --size --frame --all --fps --raw --pix --range --quality --threads" ;;
    headers) options+=" --codec" ;;
    keyframes) options+=" --list" ;;
    resize) options+=" --size --to --format --band-height --quality" ;;
  esac
  if [ -n "$values" ]; then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$word")
  elif [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -o filenames -F _qorv qorv
