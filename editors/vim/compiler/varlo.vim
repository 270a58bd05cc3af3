" Vim compiler file
" Compiler: varlo
"
" `:make` checks the scene of this buffer with varlo-check, and `:cfirst` and `:cnext` jump to the faults and the
" warnings, also in included files. `:make --no-stretched` leaves a warning out.

if exists('current_compiler')
    finish
endif
let current_compiler = 'varlo'

CompilerSet makeprg=varlo-check\ $*\ %:S
CompilerSet errorformat=%f:%l:\ %tarning:\ %m,%f:%l:\ %m
