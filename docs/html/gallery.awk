# Makes the pages of the gallery from the tables of gallery/README.md: gallery.md with all pictures, and
# scene-NAME.md with one picture beside its source. Set `examples`, the folder of the scenes, and `out`.
function scene_page(k,    page, line, python, scene) {
    page = out "/scene-" name[k] ".md"
    print "# " name[k] "\n\n" idea[k] ". *Shows* " shows[k] "\n\n<div class=\"scene\">\n" >page
    python = file[k] ~ /[.]py$/
    scene = python ? "" : " data-scene=\"examples/" file[k] "\""
    printf "<figure><img src=\"gallery/%s.jpg\" alt=\"%s\"%s></figure>\n\n", name[k], idea[k], scene >page
    print "~~~ {." (python ? "python" : "vlo") scene "}" >page
    while ((getline line <(examples "/" file[k])) > 0)
        print line >page
    print "~~~\n\n</div>\n\n<p class=\"onwards\">" >page
    if (k > 1)
        print "<a href=\"scene-" name[k - 1] ".html\">← " name[k - 1] "</a>" >page
    print "<a href=\"gallery.html\">Gallery</a>" >page
    if (k < count)
        print "<a href=\"scene-" name[k + 1] ".html\">" name[k + 1] " →</a>" >page
    print "</p>" >page
    close(page)
}
/^# / {
    print "# Gallery\n\nEvery picture comes from a small text file or program, which stands beside it when you follow" \
        " it. They are free of any licence (CC0): take them, and make them yours.\n" >(out "/gallery.md")
}
/^## / { heading = $0 }
/^\| \[/ {
    split($0, cell, / *\| */)
    split(cell[2], link, /[][()]+/)
    name[++count] = link[2]
    file[count] = link[3]
    sub(/.*examples\//, "", file[count])
    idea[count] = toupper(substr(cell[3], 1, 1)) substr(cell[3], 2)
    shows[count] = cell[4]
    if (heading != "") {
        if (count > 1)
            print "</ul>\n" >(out "/gallery.md")
        print heading "\n\n<ul class=\"sheet\">" >(out "/gallery.md")
        heading = ""
    }
    printf "<li><a href=\"scene-%s.html\"><img src=\"gallery/%s.jpg\" alt=\"\" loading=\"lazy\">", \
        name[count], name[count] >(out "/gallery.md")
    print "<b>" name[count] "</b> " cell[3] "</a></li>" >(out "/gallery.md")
}
END {
    print "</ul>" >(out "/gallery.md")
    for (k = 1; k <= count; k++)
        scene_page(k)
}
