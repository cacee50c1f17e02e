-- Too many arguments are an error without a location.
os.exit(0, true)
-- expect error bare: os.exit expects between 0 and 1 arguments
