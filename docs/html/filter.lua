-- What pandoc changes in a page of the manual on its way to HTML.
--
-- A picture that is rendered from a scene, and a block of code that is a whole scene, carry the scene's file as
-- `data-scene`, relative to the page, for scripts that want to do more with it.

local function contents(path)
  local file = io.open(path)
  if not file then return nil end
  local text = file:read("a")
  file:close()
  return text
end

local scenes = {} -- path by text, of all scenes of the manual
for path in io.popen("ls scenes/*.vlo scenes/*.set"):lines() do
  scenes[contents(path):gsub("%s+$", "")] = path
end

local title

local function target(link)
  link = link:gsub("^%.%./gallery/README%.md", "gallery.html"):gsub("^%.%./examples/([%w_]+)%.%a+$", "scene-%1.html")
  link = link:gsub("^%.%./examples/python/([%w_]+)%.py$", "scene-%1.html"):gsub("^%.%./(examples/models/)", "%1")
  return (link:gsub("^([%w_-]+)%.md", "%1.html"))
end

function Link(link)
  link.target = target(link.target)
  return link
end

function Image(image)
  image.src = image.src:gsub("^%.%./", "") -- the pages stand beside the folder of the gallery
  local folder, name = image.src:match("^(%a+)/([%w_]+)%.%a+$")
  local scene = (folder == "gallery" and "examples/" or "scenes/") .. (name or "")
  for _, extension in ipairs({ ".vlo", ".set" }) do
    if contents(folder == "gallery" and "../" .. scene .. extension or scene .. extension) then
      image.attributes["data-scene"] = scene .. extension
    end
  end
  image.attributes.loading = "lazy"
  return image
end

function CodeBlock(block)
  local language = block.classes[1]
  if language == "set" then block.classes = { "vlo" } end
  if language == "vlo" or language == "set" then
    block.attributes["data-scene"] = block.attributes["data-scene"] or scenes[block.text:gsub("%s+$", "")]
  end
  return block
end

-- A wide table moves under its own bar, which the keyboard reaches too.
function Table(table)
  return pandoc.Div({ table }, { class = "wide", tabindex = "0" })
end

function Pandoc(document)
  local sections = {}
  for _, block in ipairs(document.blocks) do
    if block.t == "Header" and block.level == 1 and not title then title = pandoc.utils.stringify(block) end
    if block.t == "Header" and block.level == 2 then
      local text = pandoc.utils.stringify(block):gsub("&", "&amp;"):gsub("<", "&lt;")
      table.insert(sections, '<li><a href="#' .. block.identifier .. '">' .. text .. "</a></li>")
    end
  end
  document.meta.pagetitle = title == "varlo" and title or (title or "") .. " · varlo"
  if #sections > 1 then document.meta.sections = pandoc.RawInline("html", table.concat(sections, "\n")) end
  return document
end
