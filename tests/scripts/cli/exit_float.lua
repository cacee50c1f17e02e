-- Floats are truncated toward zero.
-- expect exit: 2
os.exit(2.9)
