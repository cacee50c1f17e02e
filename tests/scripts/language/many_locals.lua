-- Scopes with few and with very many locals, parameters, arguments and results.
function eight(a)
  local b, c, d, e, f, g, h = a + 1, a + 2, a + 3, a + 4, a + 5, a + 6, a + 7
  return a + b + c + d + e + f + g + h
end
function nine(a)
  local b, c, d, e, f, g, h, i = a + 1, a + 2, a + 3, a + 4, a + 5, a + 6, a + 7, a + 8
  return a + b + c + d + e + f + g + h + i
end
print(eight(1), nine(1))  -- expect: 36	45

-- The same with variables that a closure shares.
function eightShared(a)
  local b, c, d, e, f, g, h = 2, 3, 4, 5, 6, 7, 8
  return (function() h = h + 1 return a + b + c + d + e + f + g + h end)(), h
end
function nineShared(a)
  local b, c, d, e, f, g, h, i = 2, 3, 4, 5, 6, 7, 8, 9
  return (function() i = i + 1 return a + b + c + d + e + f + g + h + i end)(), i
end
print(eightShared(1), nineShared(1))  -- expect: 37	46	10

-- Three hundred locals in one function; the last ones are as good as the first, and all start as nil.
function many(v1)
  local v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14, v15, v16, v17, v18, v19, v20, v21, v22, v23, v24,
    v25, v26, v27, v28, v29, v30, v31, v32, v33, v34, v35, v36, v37, v38, v39, v40, v41, v42, v43, v44, v45, v46, v47,
    v48, v49, v50, v51, v52, v53, v54, v55, v56, v57, v58, v59, v60, v61, v62, v63, v64, v65, v66, v67, v68, v69, v70,
    v71, v72, v73, v74, v75, v76, v77, v78, v79, v80, v81, v82, v83, v84, v85, v86, v87, v88, v89, v90, v91, v92, v93,
    v94, v95, v96, v97, v98, v99, v100, v101, v102, v103, v104, v105, v106, v107, v108, v109, v110, v111, v112, v113,
    v114, v115, v116, v117, v118, v119, v120, v121, v122, v123, v124, v125, v126, v127, v128, v129, v130, v131, v132,
    v133, v134, v135, v136, v137, v138, v139, v140, v141, v142, v143, v144, v145, v146, v147, v148, v149, v150, v151,
    v152, v153, v154, v155, v156, v157, v158, v159, v160, v161, v162, v163, v164, v165, v166, v167, v168, v169, v170,
    v171, v172, v173, v174, v175, v176, v177, v178, v179, v180, v181, v182, v183, v184, v185, v186, v187, v188, v189,
    v190, v191, v192, v193, v194, v195, v196, v197, v198, v199, v200, v201, v202, v203, v204, v205, v206, v207, v208,
    v209, v210, v211, v212, v213, v214, v215, v216, v217, v218, v219, v220, v221, v222, v223, v224, v225, v226, v227,
    v228, v229, v230, v231, v232, v233, v234, v235, v236, v237, v238, v239, v240, v241, v242, v243, v244, v245, v246,
    v247, v248, v249, v250, v251, v252, v253, v254, v255, v256, v257, v258, v259, v260, v261, v262, v263, v264, v265,
    v266, v267, v268, v269, v270, v271, v272, v273, v274, v275, v276, v277, v278, v279, v280, v281, v282, v283, v284,
    v285, v286, v287, v288, v289, v290, v291, v292, v293, v294, v295, v296, v297, v298, v299, v300
  v8, v9, v10, v64, v65, v128, v255 = v1 + 7, v1 + 8, v1 + 9, v1 + 63, v1 + 64, v1 + 127, v1 + 254
  v256, v257, v299, v300 = v1 + 255, v1 + 256, v1 + 298, v299
  return v1, v8, v9, v10, v64, v65, v128, v255, v256, v257, v299, v300
end
print(many(1))  -- expect: 1	8	9	10	64	65	128	255	256	257	299	nil

-- Parameters and arguments: exactly, fewer, more.
function seven(a, b, c, d, e, f, g) return g, f, e, d, c, b, a end
print(seven(1, 2, 3, 4, 5, 6, 7))  -- expect: 7	6	5	4	3	2	1
print(seven(1, 2, 3))  -- expect: nil	nil	nil	nil	3	2	1
print(seven(1, 2, 3, 4, 5, 6, 7, 8, 9))  -- expect: 7	6	5	4	3	2	1

-- Fifty results travel through several calls, truncated only where a list goes on.
function fifty(p1, p2, p3, p4, p5, p6, p7, p8, p9, p10, p11, p12, p13, p14, p15, p16, p17, p18, p19, p20, p21, p22,
  p23, p24, p25, p26, p27, p28, p29, p30, p31, p32, p33, p34, p35, p36, p37, p38, p39, p40, p41, p42, p43, p44, p45,
  p46, p47, p48, p49, p50)
  return p50, p49, p48, p47, p46, p45, p44, p43, p42, p41, p40, p39, p38, p37, p36, p35, p34, p33, p32, p31, p30,
    p29, p28, p27, p26, p25, p24, p23, p22, p21, p20, p19, p18, p17, p16, p15, p14, p13, p12, p11, p10, p9, p8, p7,
    p6, p5, p4, p3, p2, p1
end
function results()
  return 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29,
    30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47, 48, 49, 50
end
function through() return results() end
function further() return 0, through() end
print(fifty(results()))
-- expect: 50	49	48	47	46	45	44	43	42	41	40	39	38	37	36	35	34	33	32	31	30	29	28	27	26	25	24	23	22	21	20	19	18	17	16	15	14	13	12	11	10	9	8	7	6	5	4	3	2	1
print((further()), "end")  -- expect: 0	end
print(pcall(further))
-- expect: true	0	1	2	3	4	5	6	7	8	9	10	11	12	13	14	15	16	17	18	19	20	21	22	23	24	25	26	27	28	29	30	31	32	33	34	35	36	37	38	39	40	41	42	43	44	45	46	47	48	49	50
first, second, third = further()
print(first, second, third)  -- expect: 0	1	2
print(seven("x", results()))  -- expect: 6	5	4	3	2	1	x
