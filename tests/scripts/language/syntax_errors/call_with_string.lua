-- expect error 2:7: expected function call
print "text"
