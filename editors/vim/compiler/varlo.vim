" Vim compiler file
" Compiler: varlo
"
" `:make` renders the scene of this buffer, and `:make -w 80 -h 60` a small picture of it. A fault is placed
" in the file that was opened last. The program counts the lines of all files together, so behind an
" `include` the line is too large.

if exists('current_compiler')
    finish
endif
let current_compiler = 'varlo'

CompilerSet makeprg=varlo\ -i\ %:S\ $*
CompilerSet errorformat=%-P\ Parsing\ %f,
    \%E\ Syntaxic\ analyser\ %m,
    \%-C\ Please\ review\ the\ script,
    \%Z\ Parser\ Error\ -\ line:\ %l,
    \%E\ Parser\ Error\ -\ line:\ %l\ -\ %#%m,
    \%-G%.%#
