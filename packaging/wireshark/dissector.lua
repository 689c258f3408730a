-- A packet is: u16 service, u32 connection, u32 process; then the QMI message, u8 flags, u16 transaction, u16 message, u16
-- length, TLVs of u8 type, u16 length, value. All numbers are little-endian.
local qmi = Proto("vxk_qmi", "QMI")
local kinds = { [0] = "request", [2] = "response", [4] = "indication" }
local f = {
  service = ProtoField.uint16("vxk_qmi.service", "Service"),
  connection = ProtoField.uint32("vxk_qmi.connection", "Connection"),
  process = ProtoField.uint32("vxk_qmi.pid", "Process"),
  kind = ProtoField.uint8("vxk_qmi.kind", "Kind", base.DEC, kinds),
  transaction = ProtoField.uint16("vxk_qmi.transaction", "Transaction"),
  message = ProtoField.uint16("vxk_qmi.message", "Message"),
  name = ProtoField.string("vxk_qmi.name", "Name"),
  result = ProtoField.uint16("vxk_qmi.result", "Result"),
  error = ProtoField.uint16("vxk_qmi.error", "Error"),
  command = ProtoField.string("vxk_qmi.command", "Command"),
  path = ProtoField.string("vxk_qmi.path", "Path"),
  tlv = ProtoField.bytes("vxk_qmi.tlv", "TLV"),
}
local fields = {} -- by what a filter calls them: vxk_qmi.uim.get_eid.slot
for _, service in pairs(services) do
  for _, message in pairs(service.messages) do
    for _, kind in pairs(kinds) do
      for _, field in pairs(message[kind]) do
        local key = "vxk_qmi." .. service.name .. "." .. message.name .. "." .. field[1]
        if field[2] ~= "result" and not fields[key] then
          fields[key] = field[2] == "number" and ProtoField.uint32(key, field[1]) or ProtoField.bytes(key, field[1])
        end
      end
    end
  end
end
local all = {}
for _, field in pairs(f) do all[#all + 1] = field end
for _, field in pairs(fields) do all[#all + 1] = field end
qmi.fields = all

-- What a request of the extension service asks for: its name, and a file's path.
local function asked(id, data)
  if id == 2 and data:len() >= 76 then
    local length = math.min(data(4, 1):uint(), 71)
    return commands["2.3." .. data(0, 1):uint()], length > 0 and data(5, length):stringz() or nil
  elseif id == 4 and data:len() >= 4 then
    local word = data(0, 4):le_uint()
    if word < 2 then return commands["4." .. word .. "." .. word] end
    if word == 2 and data:len() >= 12 then return commands["4.2." .. data(8, 4):le_uint()] end
    return commands["4.3." .. word]
  end
end

local skipped = { counted = 1, long = 2 }
local function add_value(tree, known, key, value)
  local form = known[2]
  if form == "result" and value:len() == 4 then
    tree:add_le(f.result, value(0, 2))
    tree:add_le(f.error, value(2, 2))
  elseif form == "number" and value:len() <= 4 then
    tree:add_le(fields[key], value)
  elseif fields[key] and form ~= "number" then
    local skip = skipped[form] or 0
    if value:len() > skip then tree:add(fields[key], value(skip)) end
  else
    tree:add(f.tlv, value)
  end
end

function qmi.dissector(buffer, pinfo, root)
  if buffer:len() < 17 then return 0 end
  local service_id, kind, id = buffer(0, 2):le_uint(), kinds[buffer(10, 1):uint()], buffer(13, 2):le_uint()
  local service = services[service_id] or { name = tostring(service_id), messages = {} }
  local message = service.messages[id] or { name = "message" }
  local tree = root:add(qmi, buffer(), "QMI " .. service.name .. " " .. message.name .. " " .. (kind or "unknown"))
  tree:add_le(f.service, buffer(0, 2)):append_text(" (" .. service.name .. ")")
  tree:add_le(f.connection, buffer(2, 4))
  tree:add_le(f.process, buffer(6, 4))
  tree:add(f.kind, buffer(10, 1))
  tree:add_le(f.transaction, buffer(11, 2))
  tree:add_le(f.message, buffer(13, 2)):append_text(" (" .. message.name .. ")")
  tree:add(f.name, service.name .. "." .. message.name):set_generated()
  local info = service.name .. " " .. message.name .. " " .. (kind or "unknown")
  local at, request = 17, nil
  while at + 3 <= buffer:len() do
    local tag, length = buffer(at, 1):uint(), buffer(at + 1, 2):le_uint()
    if at + 3 + length > buffer:len() then break end
    local known = message[kind] and message[kind][tag]
    if length > 0 and known then
      local value = buffer(at + 3, length)
      add_value(tree, known, "vxk_qmi." .. service.name .. "." .. message.name .. "." .. known[1], value)
      if kind == "request" and service.name == "extension" and tag == 1 and length == 4 then request = value:le_uint() end
      if request and tag == 16 then
        local command, path = asked(request, value)
        if command then tree:add(f.command, value, command) info = info .. " " .. command end
        if path then tree:add(f.path, value(5), path) info = info .. " " .. path end
      end
    else
      tree:add(f.tlv, buffer(at, 3 + length))
    end
    at = at + 3 + length
  end
  pinfo.cols.protocol = "QMI"
  pinfo.cols.info = info
  return buffer:len()
end
