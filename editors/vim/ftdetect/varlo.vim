" Scenes of varlo, and its 3DS settings. Other programs have .set files too: one of varlo names its model.
autocmd BufNewFile,BufRead *.vlo setfiletype varlo
autocmd BufRead *.set if search('\<input_name\>', 'nw') | setfiletype varlo | endif
