# Completion of varlo for fish. The forms with one dash are words of their own, also those of one letter.

complete -c varlo -f
complete -c varlo -o '?' -l help -d 'Print the usage text'
complete -c varlo -o i -l input -x -d 'Read a scene' \
    -a '(__fish_complete_path (commandline -ct) | string match -er "(?:\.vlo|/)\t")'
complete -c varlo -o 3ds -l 3ds -x -d 'Read a 3DS settings file' \
    -a '(set -l all (__fish_complete_path (commandline -ct)); string match -er "(?:\.set|/)\t" $all; or string join \n $all)'
complete -c varlo -o c -l camera -x -d 'Choose a camera of a 3DS model'
complete -c varlo -o o -l output -x -d 'Name the picture, without extension' \
    -a '(__fish_complete_directories)'
complete -c varlo -o w -l width -x -d 'Width of the picture'
complete -c varlo -o h -l height -x -d 'Height of the picture'
complete -c varlo -o r -l resolution -x -a '320 640 800 1280 1920 3840' -d 'Width and height of the picture'
complete -c varlo -n 'string match -qr -- "^(-r|--resolution)\$" (commandline -opc)[-2]' \
    -a '240 480 600 720 1080 2160' -d 'Height of the picture'
complete -c varlo -o t -l thread -x -a '2 4 8' -d 'Number of threads'
complete -c varlo -o pqs -l pqsize -x -d 'Size of the queue of a ray'
complete -c varlo -o aan -l aanone -d 'No anti-aliasing'
complete -c varlo -o aaq -l aaquick -d 'Quick anti-aliasing'
complete -c varlo -o aaa -l aaadaptive -x -d 'Adaptive anti-aliasing'
complete -c varlo -o j -l jitter -d 'Move the samples at random'
complete -c varlo -o bmp -l bmp -d 'Write BMP'
complete -c varlo -o jpg -l jpeg -d 'Write JPEG'
complete -c varlo -o png -l png -d 'Write PNG'
complete -c varlo -o ppm -l ppm -d 'Write PPM'
complete -c varlo -o tga -l tga -d 'Write TGA'
complete -c varlo -o tif -l tiff -d 'Write TIFF'
