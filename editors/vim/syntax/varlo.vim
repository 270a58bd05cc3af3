" Vim syntax file
" Language: scenes and 3DS settings of varlo

if exists('b:current_syntax')
    finish
endif

" A word that is no keyword and a character that begins nothing are faults of the scene, and so is a reserved
" word. Where two matches begin at one place, the later one wins, and a keyword beats them all.
syntax case match
syntax iskeyword a-z,A-Z,48-57,_,.,92,58
syntax match varloIllegal /\S/
syntax match varloUnknown /[A-Za-z][A-Za-z0-9_.\\:]*/
syntax match varloNumber /[-+.0-9][-+.0-9eE]*/
syntax match varloBracket /[{}<>]/
syntax match varloColour /#\_s*[A-Za-z][A-Za-z0-9_.\\:]*/

syntax match varloComment /;.*/ contains=varloTodo,@Spell
syntax region varloComment start=/\[/ end=/\]/ contains=varloTodo,@Spell
syntax keyword varloTodo TODO FIXME XXX contained

" A string is one word or number, with blanks and comments around it; three quotes are an empty one.
syntax match varloIllegalInString /[^ \t"A-Za-z0-9_.\\:+-]/ contained
syntax region varloString start=/"/ end=/"/ contains=varloComment,varloIllegalInString
syntax match varloString /"\_s*"\_s*"/

syntax keyword varloStatement camera light settings surface plane sphere cone ring disc polygon cylinder
syntax keyword varloStatement triangle include declare patch smooth_triangle
syntax keyword varloParameter position target look_at up fov ratio aperture focal_length focal_point samples
syntax keyword varloParameter camera_samples camera_index background display resolution output_type
syntax keyword varloParameter output_name input_name antialiasing jitter aa_jitter aa_type aa_distance
syntax keyword varloParameter haze_color haze_factor reflection refraction refraction_index color ambient
syntax keyword varloParameter brilliance roughness diffuse specular normal distance center radius base cap
syntax keyword varloParameter base_radius cap_radius internal_radius external_radius vertex jpeg_quality
syntax keyword varloParameter projection_type attenuation_type shadow_type light_type min_angle max_angle
syntax keyword varloParameter light_samples reflection_type reflection_samples reflection_radius
syntax keyword varloReserved direction global_illumination distribution brightness hammersley halton modify

highlight default link varloIllegal Error
highlight default link varloIllegalInString Error
highlight default link varloUnknown Error
highlight default link varloReserved Error
highlight default link varloNumber Number
highlight default link varloBracket Delimiter
highlight default link varloColour Constant
highlight default link varloComment Comment
highlight default link varloTodo Todo
highlight default link varloString String
highlight default link varloStatement Statement
highlight default link varloParameter Type

let b:current_syntax = 'varlo'
