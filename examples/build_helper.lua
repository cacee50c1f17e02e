-- Runs shell commands one after the other, stops at the first that fails, and ends with its exit
-- code, so that a script or a build server sees the failure too.
--
--   tarvellua examples/build_helper.lua                       the steps below
--   tarvellua examples/build_helper.lua "make" "make test"    these commands instead
--
-- expect: ok       find a shell
-- expect: ok       compare versions
-- expect: warning  check the style (exit code 1)
-- expect: failed   run the tests (exit code 3)
-- expect: skipped  pack the result
-- expect exit: 3

local steps = {
  {name = "find a shell", command = "command -v sh >/dev/null"},
  {name = "compare versions", command = "test 12 -ge 11"},
  {name = "check the style", command = "exit 1", optional = true},
  {name = "run the tests", command = "exit 3"},
  {name = "pack the result", command = "exit 0"},
}
if arg[1] then
  steps = {}
  for i, command in ipairs(arg) do
    steps[i] = {name = command, command = command}
  end
end

-- os.execute returns the status that the system reports: the command's exit code times 256, or the
-- number of the signal that ended it. Shells show such a signal as 128 plus its number.
local function exitCode(status)
  if status % 128 ~= 0 then
    return 128 + status % 128
  end
  return math.floor(status / 256)
end

local failure = 0
for i, step in ipairs(steps) do
  if failure ~= 0 then
    print("skipped  " .. step.name)
  else
    local code = exitCode(os.execute(step.command))
    if code == 0 then
      print("ok       " .. step.name)
    elseif step.optional then
      print("warning  " .. step.name .. " (exit code " .. code .. ")")
    else
      print("failed   " .. step.name .. " (exit code " .. code .. ")")
      failure = code
    end
  end
end
os.exit(failure)
