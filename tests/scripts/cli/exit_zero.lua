-- An explicit 0 in a function that is called by a method of an argument.
-- expect: leaving
t = {}
function t:leave() print("leaving") return os.exit(0) end
print("never", t:leave())
