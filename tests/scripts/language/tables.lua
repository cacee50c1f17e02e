-- Tables against a plain model: a dense part that takes the keys below 65 and those at most eight past its end, and
-- other entries in the order in which they came. Elements are also taken out, of which those behind move down.
function newModel() return {size = 0, dense = {}, count = 0, keys = {}, values = {}} end
function place(model, key)
  for i = 1, model.count do if model.keys[i] == key then return i end end
  return 0
end
function setEntry(model, key, value)
  local i = place(model, key)
  if i == 0 and value ~= 0 then
    i = model.count + 1
    model.count, model.keys[i] = i, key
  end
  if value ~= 0 then
    model.values[i] = value
  elseif i > 0 then
    for j = i, model.count - 1 do model.keys[j], model.values[j] = model.keys[j + 1], model.values[j + 1] end
    model.count = model.count - 1
  end
end
function get(model, key)
  if type(key) == "number" and key >= 1 and key <= model.size then return model.dense[key] end
  local i = place(model, key)
  return i > 0 and model.values[i] or 0
end
function set(model, key, value)
  if type(key) ~= "number" or key < 1 or key >= 65 and key > model.size + 8 then return setEntry(model, key, value) end
  while model.size < key do
    local next = model.size + 1
    model.dense[next] = get(model, next)
    setEntry(model, next, 0)
    model.size = next
  end
  model.dense[key] = value
end
function length(model)
  local length = 0
  while get(model, length + 1) ~= 0 do length = length + 1 end
  return length
end
function remove(model, position)
  local last, value = length(model), get(model, position)
  for i = position, last do set(model, i, i < last and get(model, i + 1) or 0) end
  return value
end
-- The items as `pairs` delivers them, and the length.
function describe(model)
  local text = ""
  for i = 1, model.size do if model.dense[i] ~= 0 then text = text .. i .. "=" .. model.dense[i] .. " " end end
  for i = 1, model.count do text = text .. tostring(model.keys[i]) .. "=" .. model.values[i] .. " " end
  return text .. length(model)
end

seed = 5
function random(low, high)
  seed = seed * 16807 % 2147483647
  return low + seed % (high - low + 1)
end
rare = {-9223372036854775808, 9223372036854775807, 4294967297, true, false, "", "a", "b", 0, 1, 70, "\0"}
function key(low, high, size)
  if random(1, 12) == 1 then return rare[random(1, #rare)] end
  if low == "name" then return "name" .. random(1, high) end
  if low == "end" then return size + random(0, high) end
  if low == "queue" then return random(1, 9) == 1 and random(1, size + 90) or size + 1 end
  return random(low, high)
end
for i, range in ipairs({{1, 20}, {50, 90}, {-5, 300}, {"end", 12}, {"name", 6}, {"name", 200}, {"queue", 0}}) do
  for nils = 0, 9, 3 do  -- of ten stores
    local model, t = newModel(), {}
    for step = 1, 400 do
      local k, v = key(range[1], range[2], #t), step
      set(model, k, random(1, 10) <= nils and 0 or v)
      v = get(model, k)
      if type(k) == "number" and k > 0 and k < 400 and step % 3 == 0 then k = k / 1 end
      -- Fields are remembered where they are read and written, whatever table comes along.
      if k == "a" then t.a = v ~= 0 and v or nil else t[k] = v ~= 0 and v or nil end
      if (t[k] or 0) ~= v or get(model, "a") ~= (t.a or 0) then print("wrong value", i, nils, step, k) end
      if range[1] == "queue" and step > 150 then
        local position = random(1, 8) == 1 and random(1, #t + 1) or 1
        if (table.remove(t, position) or 0) ~= remove(model, position) then print("wrong removal", nils, step) end
      end
      if step % 25 == 0 then
        local text = ""
        for k, v in pairs(t) do text = text .. tostring(k) .. "=" .. v .. " " end
        if text .. #t ~= describe(model) then print("differs", i, nils, step, text .. #t, describe(model)) end
      end
    end
  end
end
print("done")  -- expect: done
-- A field set to nil is no member, also where the statement has found it before.
for i = 1, 2 do
  local t = {1, 2}
  t.x = i
  t.x = nil
  print(t)
end
-- expect: {1, 2}
-- expect: {1, 2}
