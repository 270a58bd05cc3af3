" Scenes of varlo. Its 3DS settings have no extension of their own: `:setfiletype varlo` marks them.
autocmd BufNewFile,BufRead *.vlo setfiletype varlo
